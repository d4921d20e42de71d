// A device context that draws nothing: it writes down each call, knows which objects live and what is selected, and
// reads of a bitmap all that a platform would, so that the sanitizers see it.
#pragma once

#include <cstdio>
#include <cstring>
#include <numeric>
#include <set>
#include <string>
#include <vector>

#include "broker/DrawingArrays.h"
#include "broker/DrawingRelay.h"

class RecordingRelay final : public DrawingRelay {
 public:
  static constexpr DrawingHandle kStock = 1;  // what is selected at first

  DrawingHandle CreateBrush(uint32_t colour) override { return Create("brush", colour, 0); }
  DrawingHandle CreatePen(uint32_t width, uint32_t colour) override { return Create("pen", colour, width); }
  DrawingHandle Select(DrawingHandle /*dc*/, DrawingHandle object) override {
    Note(object == kStock ? "select old" : "select new");
    const DrawingHandle old = selected;
    selected = object;
    return old;
  }
  void Delete(DrawingHandle object) override {
    Note(object == selected ? "delete what is selected" : "delete");
    living.erase(object);
  }
  int32_t Save(DrawingHandle /*dc*/) override {
    Note("save");
    return ++depth;
  }
  void Restore(DrawingHandle /*dc*/, int32_t state) override {
    Note(state == depth ? "restore" : "restore another state");
    --depth;
  }
  void FillRectangle(DrawingHandle /*dc*/, const DrawingRect& r, DrawingHandle brush) override {
    Note("rectangle " + Text(r) + (brush == selected ? "" : " with another brush"));
  }
  void FillPath(DrawingHandle /*dc*/) override { Note("fill"); }
  void StrokePath(DrawingHandle /*dc*/) override { Note("stroke"); }
  void ClipToPath(DrawingHandle /*dc*/) override { Note("clip"); }
  void Stretch(DrawingHandle /*dc*/, const DrawingRect& target, const DrawingRect& source, const uint8_t* pixels,
               const uint8_t* header, uint32_t rasterOperation) override {
    char operation[16];
    std::snprintf(operation, sizeof(operation), "%08x", rasterOperation);
    Note("stretch " + Text(target) + " from " + Text(source) + " by " + operation);
    sum += Read(pixels, header);
  }

  std::vector<std::string> calls;
  std::set<DrawingHandle> living;
  DrawingHandle selected = kStock;
  int32_t depth = 0;
  uint64_t sum = 0;

 private:
  size_t created = 0;
  static std::string Text(const DrawingRect& r) {
    return std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) + "," +
           std::to_string(r.bottom);
  }
  DrawingHandle Create(const char* kind, uint32_t colour, uint32_t width) {
    char text[40];
    std::snprintf(text, sizeof(text), width == 0 ? "%s %06x" : "%s %06x %u", kind, colour, width);
    Note(text);
    const auto object = static_cast<DrawingHandle>(100 + created++);
    living.insert(object);
    return object;
  }
  void Note(std::string call) { calls.push_back(std::move(call)); }
  // The colours that the depth or the header asks for, then rows of 32-bit words, or as many bytes as a compressed
  // image has.
  static uint64_t Read(const uint8_t* pixels, const uint8_t* header) {
    BitmapHeader fields = {};
    std::memcpy(&fields, header, sizeof(fields));
    const uint64_t colours = fields.coloursUsed != 0 ? fields.coloursUsed : fields.bitCount <= 8 ? 256 : 3;
    const int64_t height = fields.height;
    const uint64_t rows = static_cast<uint64_t>(height < 0 ? -height : height);
    const uint64_t plain = (static_cast<uint64_t>(fields.width) * fields.bitCount + 31) / 32 * 4 * rows;
    const bool compressed = fields.compression != 0 && fields.compression != 3;
    const uint64_t bytes = compressed ? fields.imageSize : plain;
    const uint64_t head = std::accumulate(header, header + fields.size + colours * 4, uint64_t{0});
    return std::accumulate(pixels, pixels + bytes, head);
  }
};
