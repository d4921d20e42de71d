#include "client/PrintCanvas.h"

#include <cmath>
#include <cstring>
#include <numbers>

namespace {

// (pattern where the mask is 0) or (destination where it is 1)
constexpr ULONG kPaintAroundMask = 0x00B8074A;

// Bytes for a call; an allocation that fails sends none, and the call is refused.
class Bytes {
 public:
  Bytes(const void* data, size_t size) : array_(SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(size))) {
    if (array_ != nullptr && size != 0) std::memcpy(array_->pvData, data, size);
  }
  template <class Value>
  static Bytes Of(const Value& value) {
    return Bytes(&value, sizeof(value));
  }
  ~Bytes() {
    if (array_ != nullptr) SafeArrayDestroy(array_);
  }
  Bytes(const Bytes&) = delete;
  Bytes& operator=(const Bytes&) = delete;
  [[nodiscard]] SAFEARRAY* Get() const { return array_; }

 private:
  SAFEARRAY* array_;
};

template <class Colour, size_t Count>
struct BitmapWithColours {
  BITMAPINFOHEADER header;
  Colour colours[Count];
};
// One colour makes the header of a fill 44 bytes long, two make that of a transparent one 48.
using FillHeader = BitmapWithColours<RGBQUAD, 1>;
using MaskHeader = BitmapWithColours<RGBQUAD, 2>;
static_assert(sizeof(FillHeader) == 44 && sizeof(MaskHeader) == 48);

BITMAPINFOHEADER HeaderOf(const PagePicture& picture) {
  BITMAPINFOHEADER header = {};
  header.biSize = sizeof(header);
  header.biWidth = picture.width;
  header.biHeight = -picture.height;  // rows from the top
  header.biPlanes = 1;
  header.biBitCount = picture.bitCount;
  return header;
}

}  // namespace

PrintCanvas::PrintCanvas(ILumenBroker6* broker, ULONG dc, ULONG dotsAcross, ULONG dotsDown)
    : broker_(broker), dc_(dc), dotsAcross_(dotsAcross), dotsDown_(dotsDown) {}

void PrintCanvas::BeginAt(PagePoint point) {
  if (SUCCEEDED(result_)) Note("BrokerBeginPath", broker_->BrokerBeginPath(dc_));
  if (SUCCEEDED(result_)) {
    Note("BrokerMoveTo",
         broker_->BrokerMoveTo(dc_, static_cast<ULONG>(Across(point.x)), static_cast<ULONG>(Down(point.y))));
  }
}

void PrintCanvas::Lines(std::span<const PagePoint> points) {
  BeginAt(points.front());
  for (const PagePoint& point : points.subspan(1)) {
    if (FAILED(result_)) return;
    Note("BrokerLineTo",
         broker_->BrokerLineTo(dc_, static_cast<ULONG>(Across(point.x)), static_cast<ULONG>(Down(point.y))));
  }
  if (SUCCEEDED(result_)) Note("BrokerEndPath", broker_->BrokerEndPath(dc_));
}

void PrintCanvas::Curves(std::span<const PagePoint> points) {
  BeginAt(points.front());
  if (FAILED(result_)) return;
  std::vector<POINT> dots;
  for (const PagePoint& point : points.subspan(1)) dots.push_back({Across(point.x), Down(point.y)});
  const Bytes bytes(dots.data(), dots.size() * sizeof(POINT));
  Note("BrokerPolyBezierTo", broker_->BrokerPolyBezierTo(dc_, bytes.Get(), static_cast<ULONG>(dots.size())));
  if (SUCCEEDED(result_)) Note("BrokerEndPath", broker_->BrokerEndPath(dc_));
}

void PrintCanvas::Fill(ULONG colour) {
  if (SUCCEEDED(result_)) Note("BrokerPathToSolidFill", broker_->BrokerPathToSolidFill(dc_, colour));
}

void PrintCanvas::Stroke(double thickness, ULONG colour) {
  if (FAILED(result_)) return;
  Note("BrokerPathToStrokedLine", broker_->BrokerPathToStrokedLine(dc_, static_cast<ULONG>(Across(thickness)), colour));
}

void PrintCanvas::FillWith(const PagePicture& picture, const PageArea& area) {
  if (FAILED(result_)) return;
  // The third and fourth values are a width and a height.
  const Bytes target =
      Bytes::Of(RECT{Across(area.left), Down(area.top), Across(area.right - area.left), Down(area.bottom - area.top)});
  const Bytes source = Bytes::Of(RECT{0, 0, picture.width, picture.height});
  const Bytes pixels(picture.rows.data(), picture.rows.size());
  const Bytes header = Bytes::Of(FillHeader{HeaderOf(picture), {}});
  Note("BrokerPathToBitmapFill",
       broker_->BrokerPathToBitmapFill(dc_, target.Get(), source.Get(), pixels.Get(), header.Get(), TRUE));
}

void PrintCanvas::FillAround(const PagePicture& mask, const PageArea& area, ULONG colour) {
  if (FAILED(result_)) return;
  const Bytes target =
      Bytes::Of(RECT{Across(area.left), Down(area.top), Across(area.right - area.left), Down(area.bottom - area.top)});
  const Bytes source = Bytes::Of(RECT{0, 0, mask.width, mask.height});
  const Bytes pixels(mask.rows.data(), mask.rows.size());
  const Bytes header = Bytes::Of(MaskHeader{HeaderOf(mask), {{0, 0, 0, 0}, {255, 255, 255, 0}}});
  Note("BrokerPathToTransparentBitmapFill",
       broker_->BrokerPathToTransparentBitmapFill(dc_, target.Get(), source.Get(), pixels.Get(), header.Get(), colour,
                                                  kPaintAroundMask));
}

void PrintCanvas::Rectangle(const PageArea& area, ULONG colour) {
  if (FAILED(result_)) return;
  const Bytes rect = Bytes::Of(RECT{Across(area.left), Down(area.top), Across(area.right), Down(area.bottom)});
  Note("BrokerAddRectangle", broker_->BrokerAddRectangle(dc_, rect.Get(), colour));
}

void PrintCanvas::ClippedRectangle(const PageArea& area, const PageArea& clip, ULONG colour) {
  if (FAILED(result_)) return;
  ULONG state = 0;
  ULONG region = 0;
  Note("BrokerSaveDC", broker_->BrokerSaveDC(dc_, &state));
  if (SUCCEEDED(result_)) {
    Note("BrokerIntersectClipRect",
         broker_->BrokerIntersectClipRect(dc_, static_cast<ULONG>(Across(clip.left)),
                                          static_cast<ULONG>(Down(clip.top)), static_cast<ULONG>(Across(clip.right)),
                                          static_cast<ULONG>(Down(clip.bottom)), &region));
  }
  Rectangle(area, colour);
  if (SUCCEEDED(result_)) Note("BrokerRestoreDC", broker_->BrokerRestoreDC(dc_, state));
}

void PrintCanvas::Text(PagePoint at, const Font& font, WideView text) {
  WithFont(font, [&] {
    const Bytes rect = Bytes::Of(RECT{});
    const WideString terminated(text);
    const Bytes string(terminated.c_str(), (terminated.size() + 1) * sizeof(wchar_t));
    const Bytes spacing(nullptr, 0);
    ULONG drawn = 0;
    Note("BrokerExtTextOutW",
         broker_->BrokerExtTextOutW(dc_, static_cast<ULONG>(Across(at.x)), static_cast<ULONG>(Down(at.y)), 0, TRUE,
                                    rect.Get(), string.Get(), static_cast<ULONG>(terminated.size()), TRUE,
                                    spacing.Get(), &drawn));
  });
}

void PrintCanvas::SpacedText(PagePoint at, const Font& font, std::string_view text, double advance) {
  WithFont(font, [&] {
    const Bytes rect = Bytes::Of(RECT{});
    const std::string terminated(text);
    const Bytes string(terminated.c_str(), terminated.size() + 1);
    const std::vector<INT> advances(terminated.size(), Across(advance));
    const Bytes spacing(advances.data(), advances.size() * sizeof(INT));
    ULONG drawn = 0;
    Note("BrokerExtTextOutA",
         broker_->BrokerExtTextOutA(dc_, static_cast<ULONG>(Across(at.x)), static_cast<ULONG>(Down(at.y)), 0, TRUE,
                                    rect.Get(), string.Get(), static_cast<ULONG>(terminated.size()), FALSE,
                                    spacing.Get(), &drawn));
  });
}

void PrintCanvas::TurnedText(PagePoint at, const Font& font, WideView text, double degrees) {
  if (FAILED(result_)) return;
  ULONG state = 0;
  ULONG ignored = 0;
  Note("BrokerSaveDC", broker_->BrokerSaveDC(dc_, &state));
  if (SUCCEEDED(result_)) Note("BrokerSetGraphicsMode", broker_->BrokerSetGraphicsMode(dc_, GM_ADVANCED, &ignored));
  if (SUCCEEDED(result_)) {
    const double angle = degrees * std::numbers::pi / 180;
    const auto cosine = static_cast<float>(std::cos(angle));
    const auto sine = static_cast<float>(std::sin(angle));
    const XFORM turn = {cosine, -sine, sine, cosine, static_cast<float>(Across(at.x)), static_cast<float>(Down(at.y))};
    const Bytes bytes = Bytes::Of(turn);
    Note("BrokerSetWorldTransform", broker_->BrokerSetWorldTransform(dc_, bytes.Get(), &ignored));
  }
  Text({0, 0}, font, text);
  if (SUCCEEDED(result_)) Note("BrokerRestoreDC", broker_->BrokerRestoreDC(dc_, state));
}

LONG PrintCanvas::Across(double inches) const {
  return std::lround(inches * dotsAcross_);
}

LONG PrintCanvas::Down(double inches) const {
  return std::lround(inches * dotsDown_);
}

void PrintCanvas::Note(std::string_view call, HRESULT result) {
  if (SUCCEEDED(result_) && FAILED(result)) {
    result_ = result;
    refused_ = call;
  }
}

// The font lives in the broker: made there, selected for one drawing, put back and deleted.
template <class Draw>
void PrintCanvas::WithFont(const Font& font, Draw draw) {
  if (FAILED(result_)) return;
  LOGFONTW wanted = {};
  wanted.lfHeight = -Down(font.height);
  wanted.lfPitchAndFamily = font.pitchAndFamily;
  lstrcpynW(wanted.lfFaceName, font.face, LF_FACESIZE);
  const Bytes bytes = Bytes::Of(wanted);
  ULONG made = 0;
  ULONG old = 0;
  ULONG ignored = 0;
  Note("BrokerCreateFontIndirect", broker_->BrokerCreateFontIndirect(bytes.Get(), &made));
  if (FAILED(result_)) return;
  Note("BrokerSelectObject", broker_->BrokerSelectObject(dc_, made, &old));
  if (SUCCEEDED(result_)) draw();
  (void)broker_->BrokerSelectObject(dc_, old, &ignored);
  (void)broker_->BrokerDeleteObject(made, &ignored);
}
