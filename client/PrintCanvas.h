// A page of the broker's device context, drawn in inches. The first call that is refused ends the drawing: what follows
// does nothing, and Result() keeps the reason.
#pragma once

#include <windows.h>

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "LumenBroker.h"
#include "engine/WideText.h"

// A place on the page, in inches from the top left corner of what can be printed on.
struct PagePoint {
  double x;
  double y;
};
struct PageArea {
  double left;
  double top;
  double right;
  double bottom;
};

// A small picture. Rows from the top, each padded to 32 bits; one bit or 32 bits a pixel.
struct PagePicture {
  int32_t width;
  int32_t height;
  uint16_t bitCount;
  std::vector<uint8_t> rows;
};

class PrintCanvas {
 public:
  // Borrows the broker; the device context stays the caller's.
  PrintCanvas(ILumenBroker6* broker, ULONG dc, ULONG dotsAcross, ULONG dotsDown);
  PrintCanvas(const PrintCanvas&) = delete;
  PrintCanvas& operator=(const PrintCanvas&) = delete;

  [[nodiscard]] HRESULT Result() const { return result_; }
  // Which call was refused; empty while none was.
  [[nodiscard]] std::string_view Refused() const { return refused_; }

  // Paths, of straight lines through points and of curves (the first point, then three for each). Drawn by what
  // follows.
  void Lines(std::span<const PagePoint> points);
  void Curves(std::span<const PagePoint> points);

  void Fill(ULONG colour);
  void Stroke(double thickness, ULONG colour);
  void FillWith(const PagePicture& picture, const PageArea& area);
  // Paints where the picture's bits are 0 and leaves what is there where they are 1.
  void FillAround(const PagePicture& mask, const PageArea& area, ULONG colour);

  void Rectangle(const PageArea& area, ULONG colour);
  // The same, as far as it lies in `clip`.
  void ClippedRectangle(const PageArea& area, const PageArea& clip, ULONG colour);

  // Text with the font selected for its length. `pitchAndFamily` finds a font where there is none of that name.
  struct Font {
    const wchar_t* face;
    BYTE pitchAndFamily;
    double height;
  };
  void Text(PagePoint at, const Font& font, WideView text);
  // Narrow text, each character as many inches behind the one before.
  void SpacedText(PagePoint at, const Font& font, std::string_view text, double advance);
  // Text turned about its place, counter-clockwise in degrees, through the world transform.
  void TurnedText(PagePoint at, const Font& font, WideView text, double degrees);

 private:
  [[nodiscard]] LONG Across(double inches) const;
  [[nodiscard]] LONG Down(double inches) const;
  // Remembers the first refusal.
  void Note(std::string_view call, HRESULT result);
  void BeginAt(PagePoint point);
  template <class Draw>
  void WithFont(const Font& font, Draw draw);

  ILumenBroker6* broker_;
  ULONG dc_;
  double dotsAcross_;
  double dotsDown_;
  HRESULT result_ = S_OK;
  std::string_view refused_;
};
