// Which addresses an add-on product may come from: one host label directly below the vendor's domain, by HTTP or HTTPS
// on the protocol's own port.
#pragma once

#include <string>

// Takes a terminated URL apart. On success `host` is the label with the domain, `path` begins with "/", and `secure`
// tells HTTPS. On failure both texts are empty. Letters count as written: an upper-case scheme or host is refused.
[[nodiscard]] bool ParseProductUrl(const char* url, std::string& host, std::string& path, bool& secure);
