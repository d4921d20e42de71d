// The one check that packages, digests and shortcut entitlements rest on: a signed message whose certificates lead up
// to a given anchor. The platform's chain engine and root store take no part, so an anchor is trusted for being that
// certificate.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

// True when signer 0 of `message` signed its content and the certificates in the message lead from the signer through
// at most eight issuers to one that `anchor` (DER) issued, each within its time. `content` then holds what was signed;
// on failure it is left alone. Any thread; nothing is kept.
[[nodiscard]] bool VerifySignedMessage(std::span<const uint8_t> message, std::span<const uint8_t> anchor,
                                       std::vector<uint8_t>& content);
