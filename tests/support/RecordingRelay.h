// A device context that draws nothing: it writes down each call with the objects it names, and reads of a bitmap all
// that a platform would, so that the sanitizers see it.
#pragma once

#include <cstring>
#include <numeric>
#include <string>
#include <utility>

#include "broker/DrawingArrays.h"
#include "broker/DrawingRelay.h"

class RecordingRelay final : public DrawingRelay {
 public:
  DrawingHandle CreateBrush(uint32_t colour) override { return Note("brush", colour), ++open, ++created_; }
  DrawingHandle CreatePen(uint32_t width, uint32_t colour) override {
    return Note("pen", width, colour), ++open, ++created_;
  }
  // What is selected at first is 0.
  DrawingHandle Select(DrawingHandle /*dc*/, DrawingHandle object) override {
    return Note("select", object), std::exchange(selected_, object);
  }
  void Delete(DrawingHandle object) override { Note("delete", object), --open; }
  int32_t Save(DrawingHandle /*dc*/) override { return Note("save"), ++open, 5; }
  void Restore(DrawingHandle /*dc*/, int32_t state) override { Note("restore", state), --open; }
  void FillRectangle(DrawingHandle /*dc*/, const DrawingRect& r, DrawingHandle brush) override {
    Note("rectangle", r.left, r.top, r.right, r.bottom, brush);
  }
  void FillPath(DrawingHandle /*dc*/) override { Note("fill"); }
  void StrokePath(DrawingHandle /*dc*/) override { Note("stroke"); }
  void ClipToPath(DrawingHandle /*dc*/) override { Note("clip"); }
  void Stretch(DrawingHandle /*dc*/, const DrawingRect& t, const DrawingRect& s, const uint8_t* pixels,
               const uint8_t* header, uint32_t rasterOperation) override {
    Note("stretch", t.left, t.top, t.right, t.bottom, s.left, s.top, s.right, s.bottom, rasterOperation);
    sum += Read(pixels, header);
  }

  std::string calls;  // names, numbers, and ";" behind each
  int open = 0;       // objects not deleted and states not restored
  uint64_t sum = 0;

 private:
  template <class... Values>
  void Note(const char* call, Values... values) {
    calls += call;
    ((calls += " " + std::to_string(values)), ...);
    calls += ";";
  }
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
    const uint64_t head = std::accumulate(header, header + fields.size + colours * 4, uint64_t{0});
    return std::accumulate(pixels, pixels + (compressed ? fields.imageSize : plain), head);
  }

  DrawingHandle selected_ = 0;
  DrawingHandle created_ = 0;
};
