#include "ui/toolkit/MImage.h"

#include <cstring>
#include <vector>

#include "engine/HostCallbacks.h"
#include "ui/toolkit/TgaImage.h"

namespace {

// The header with room for one colour, as images have always been described.
constexpr DWORD kHeaderSize = 44;

std::span<const uint8_t> ResourceBytes(HMODULE module, int32_t id, const wchar_t* type) {
  const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(id), type);
  const HGLOBAL loaded = found == nullptr ? nullptr : LoadResource(module, found);
  const void* const data = loaded == nullptr ? nullptr : LockResource(loaded);
  if (data == nullptr) return {};
  return {static_cast<const uint8_t*>(data), SizeofResource(module, found)};
}

// A packed image begins with the 32-bit size that it unpacks to.
std::vector<uint8_t> Unpack(std::span<const uint8_t> packed, HostCallbacks* host) {
  constexpr uint32_t kMaximum = 64u << 20;
  uint32_t size = 0;
  if (host == nullptr || packed.size() < sizeof(size)) return {};
  std::memcpy(&size, packed.data(), sizeof(size));
  if (size > kMaximum) return {};
  const auto content = packed.subspan(sizeof(size));
  std::vector<uint8_t> image(size);
  if (!host->DecompressImage(image.data(), size, content.data(), static_cast<uint32_t>(content.size()))) image.clear();
  return image;
}

}  // namespace

void MImage::Load(HMODULE module, int32_t id, ImageForm form, HostCallbacks* host) {
  if (form == ImageForm::Plain) {
    Decode(ResourceBytes(module, id, L"IMG"));
  } else if (form == ImageForm::Compressed) {
    Decode(Unpack(ResourceBytes(module, id, L"LZMG"), host));
  }
}

void MImage::Decode(std::span<const uint8_t> data) {
  const auto header = ReadTgaHeader(data);
  if (!header) return;
  const WindowDc screen(nullptr);
  slot = dc.Create(screen.Get()) ? dc.Get() : nullptr;
  if (slot == nullptr) return;
  width = header->width;
  height = header->height;
  BITMAPINFO info = {};
  info.bmiHeader.biSize = kHeaderSize;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = height;  // above 0: the bottom row comes first, as it does in the file
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  void* pixels = nullptr;
  const HBITMAP bitmap = CreateDIBSection(slot, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
  if (bitmap == nullptr) return;
  DecodeTga(data, *header, {static_cast<uint32_t*>(pixels), header->PixelCount()});
  dc.Select(bitmap);
}
