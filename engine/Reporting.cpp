#include "engine/Reporting.h"

MString PathAndError(const MString& path, uint32_t error, ErrorRadix radix) {
  MString text = path;
  text.Append(MString(L" "));
  text.Append(MString::FromNumber(error, static_cast<uint32_t>(radix)));
  return text;
}

MString KeyValueError(const MString& key, const MString& value, uint32_t error, bool blank) {
  MString text = key;
  text.Append(MString(L"/"));
  text.Append(value);
  if (blank) text.Append(MString(L" "));
  text.Append(MString::FromNumber(error, 16));
  return text;
}

MString KeyAndError(const MString& key, uint32_t error) {
  return KeyValueError(key, MString(L""), error);
}

MString ErrorAlone(uint32_t error) {
  return MString::FromNumber(error);
}
