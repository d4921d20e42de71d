// print-test: one page with something of everything that a player prints, drawn through the broker.
#include <windows.h>

#include <commdlg.h>

#include <cmath>
#include <numbers>

#include "client/Command.h"
#include "client/PrintCanvas.h"

namespace {

constexpr ULONG kBlack = RGB(0, 0, 0);
constexpr ULONG kRed = RGB(220, 30, 30);
constexpr ULONG kGreen = RGB(30, 160, 60);
constexpr ULONG kBlue = RGB(30, 60, 200);
constexpr ULONG kPurple = RGB(140, 40, 160);
constexpr ULONG kOrange = RGB(240, 140, 20);
constexpr ULONG kTeal = RGB(20, 150, 150);
constexpr ULONG kGrey = RGB(200, 200, 200);

constexpr PrintCanvas::Font kHeading = {L"Times New Roman", VARIABLE_PITCH | FF_ROMAN, 0.4};
constexpr PrintCanvas::Font kFixed = {L"Courier New", FIXED_PITCH | FF_MODERN, 0.2};
constexpr PrintCanvas::Font kNote = {L"Arial", VARIABLE_PITCH | FF_SWISS, 0.14};

// What the broker says of the paper.
struct Paper {
  ULONG width = 0;
  ULONG height = 0;
  ULONG deviceWidth = 0;
  ULONG deviceHeight = 0;
  ULONG paperWidth = 0;
  ULONG paperHeight = 0;
  ULONG dotsAcross = 0;
  ULONG dotsDown = 0;
};

// A device context that the broker made for this client.
class PrinterContext {
 public:
  explicit PrinterContext(ILumenBroker6* broker) : broker_(broker) {}
  ~PrinterContext() {
    ULONG ignored = 0;
    if (dc_ != 0) (void)broker_->BrokerDeleteDC(dc_, &ignored);
  }
  PrinterContext(const PrinterContext&) = delete;
  PrinterContext& operator=(const PrinterContext&) = delete;

  HRESULT Open(bool ask) {
    ULONG from = 1;
    ULONG to = 1;
    // Without the dialog the platform gives the default printer as it is set up.
    ULONG flags = PD_RETURNDC | PD_NOSELECTION | (ask ? 0 : PD_RETURNDEFAULT);
    return broker_->BrokerPrintDialog(0, &from, &to, &flags, &dc_);
  }
  [[nodiscard]] ULONG Get() const { return dc_; }

 private:
  ILumenBroker6* broker_;
  ULONG dc_ = 0;
};

// Four quarters: red and yellow above blue and green.
PagePicture Quarters() {
  PagePicture picture = {16, 16, 32, {}};
  for (int y = 0; y < 16; ++y) {
    for (int x = 0; x < 16; ++x) {
      const bool right = x >= 8;
      const bool below = y >= 8;
      const uint8_t blue = below && !right ? 255 : 0;
      const uint8_t green = right ? (below ? 160 : 255) : 0;
      const uint8_t red = below ? 0 : 255;
      picture.rows.insert(picture.rows.end(), {blue, green, red, 0});
    }
  }
  return picture;
}

// Four by four fields, the first one painted.
PagePicture Chessboard() {
  PagePicture picture = {4, 4, 1, {}};
  for (int y = 0; y < 4; ++y) {
    const uint8_t row = y % 2 == 0 ? 0x50 : 0xA0;
    picture.rows.insert(picture.rows.end(), {row, 0, 0, 0});
  }
  return picture;
}

std::vector<PagePoint> Star(PagePoint centre, double radius) {
  std::vector<PagePoint> points;
  for (int i = 0; i <= 5; ++i) {
    const double angle = std::numbers::pi * (0.8 * i - 0.5);
    points.push_back({centre.x + radius * std::cos(angle), centre.y + radius * std::sin(angle)});
  }
  return points;
}

// A circle of four curves.
std::vector<PagePoint> Circle(PagePoint c, double r) {
  const double k = r * 0.5523;
  return {{c.x + r, c.y},     {c.x + r, c.y + k}, {c.x + k, c.y + r}, {c.x, c.y + r},     {c.x - k, c.y + r},
          {c.x - r, c.y + k}, {c.x - r, c.y},     {c.x - r, c.y - k}, {c.x - k, c.y - r}, {c.x, c.y - r},
          {c.x + k, c.y - r}, {c.x + r, c.y - k}, {c.x + r, c.y}};
}

void DrawText(PrintCanvas& canvas) {
  canvas.Text({0.75, 0.5}, kHeading, L"Lumen print test");
  canvas.SpacedText({0.75, 1.2}, kFixed, "Every line of this page came through the broker", 0.14);
  canvas.Text({0.75, 4.15}, kNote, L"A filled path, a stroked path, a filled and a stroked curve");
  canvas.Text({0.75, 7.35}, kNote, L"A bitmap clipped to a path");
  canvas.Text({4.25, 7.35}, kNote, L"A bitmap as a mask over what was there");
  canvas.TurnedText({6.5, 9.6}, kNote, L"Turned by 60 degrees", 60);
}

void DrawPaths(PrintCanvas& canvas) {
  canvas.Lines(Star({1.75, 3}, 1));
  canvas.Fill(kRed);
  const PagePoint zigzag[] = {{3.25, 3.5}, {3.75, 2.5}, {4.25, 3.5}, {4.75, 2.5}, {5.25, 3.5}};
  canvas.Lines(zigzag);
  canvas.Stroke(0.12, kBlue);
  canvas.Curves(Circle({6.5, 3}, 0.75));
  canvas.Fill(kGreen);
  const PagePoint wave[] = {{0.75, 4.9}, {2.5, 4.1}, {3, 5.6}, {4, 4.8}, {5, 4.1}, {5.5, 5.6}, {7.25, 4.8}};
  canvas.Curves(wave);
  canvas.Stroke(0.06, kPurple);
}

void DrawBitmaps(PrintCanvas& canvas) {
  const PagePoint diamond[] = {{2, 5.3}, {3, 6.3}, {2, 7.3}, {1, 6.3}, {2, 5.3}};
  canvas.Lines(diamond);
  canvas.FillWith(Quarters(), {1, 5.3, 3, 7.3});
  canvas.Rectangle({4.5, 5.3, 6.5, 7.3}, kGrey);
  canvas.Curves(Circle({5.5, 6.3}, 1));
  canvas.FillAround(Chessboard(), {4.5, 5.3, 6.5, 7.3}, kOrange);
}

void DrawRectangles(PrintCanvas& canvas) {
  canvas.ClippedRectangle({0.75, 8, 3.75, 9.5}, {0.75, 8, 2.25, 9.5}, kTeal);
  canvas.Rectangle({3, 8, 4.5, 9.5}, kBlack);
  canvas.Rectangle({3.1, 8.1, 4.4, 9.4}, RGB(255, 255, 255));
}

// The page itself. Its star's middle is filled too.
void DrawPage(PrintCanvas& canvas, ILumenBroker6* broker, ULONG dc) {
  ULONG before = 0;
  (void)broker->BrokerSetPolyFillMode(dc, WINDING, &before);
  (void)broker->BrokerSetBkMode(dc, TRANSPARENT, &before);
  (void)broker->BrokerSetTextColor(dc, kBlack, &before);
  DrawText(canvas);
  DrawPaths(canvas);
  DrawBitmaps(canvas);
  DrawRectangles(canvas);
}

void ShowPaper(const Context& context, const Paper& paper) {
  if (context.silent) return;
  const auto pair = [](ULONG a, ULONG b) { return std::to_string(a) + " x " + std::to_string(b); };
  if (context.json) {
    JsonObject object;
    object.Number("width", paper.width).Number("height", paper.height);
    object.Number("deviceWidth", paper.deviceWidth).Number("deviceHeight", paper.deviceHeight);
    object.Number("paperWidth", paper.paperWidth).Number("paperHeight", paper.paperHeight);
    object.Number("dotsAcross", paper.dotsAcross).Number("dotsDown", paper.dotsDown);
    Print(object.Close() + "\n");
    return;
  }
  Print("one page of " + pair(paper.width, paper.height) + " dots on paper of " +
        pair(paper.paperWidth, paper.paperHeight) + ", " + pair(paper.dotsAcross, paper.dotsDown) + " an inch\n");
}

Outcome RefusedAt(std::string_view call, HRESULT result, const Context& context) {
  if (!context.json && !context.silent) PrintError("lumenctl print-test: " + std::string(call) + " was refused\n");
  return Outcome::Of(result);
}

Outcome PrintTest(Context& context) {
  ILumenBroker6* const broker = context.broker;
  PrinterContext printer(broker);
  const HRESULT opened = printer.Open(context.arguments.Has("--dialog"));
  if (FAILED(opened)) return RefusedAt("BrokerPrintDialog", opened, context);
  if (printer.Get() == 0) return RefusedAt("BrokerPrintDialog", E_FAIL, context);
  const ULONG dc = printer.Get();
  Paper paper;
  HRESULT result = broker->BrokerStartDoc(dc, &paper.width, &paper.height, &paper.deviceWidth, &paper.deviceHeight,
                                          &paper.paperWidth, &paper.paperHeight, &paper.dotsAcross, &paper.dotsDown);
  if (FAILED(result)) return RefusedAt("BrokerStartDoc", result, context);
  result = broker->BrokerStartPage(dc);
  if (FAILED(result)) return RefusedAt("BrokerStartPage", result, context);
  PrintCanvas canvas(broker, dc, paper.dotsAcross, paper.dotsDown);
  DrawPage(canvas, broker, dc);
  // A page with a part missing is ended all the same, so that the job goes.
  result = broker->BrokerEndPage(dc);
  const HRESULT ended = broker->BrokerEndDoc(dc);
  if (FAILED(canvas.Result())) return RefusedAt(canvas.Refused(), canvas.Result(), context);
  if (FAILED(result)) return RefusedAt("BrokerEndPage", result, context);
  if (FAILED(ended)) return RefusedAt("BrokerEndDoc", ended, context);
  ShowPaper(context, paper);
  return Outcome::Of(S_OK);
}

}  // namespace

std::span<const Command> PrintCommands() {
  static const std::vector<Command> commands = {
      {"print-test",
       "[--dialog]",
       "print a page with text, paths, curves and bitmaps",
       "Prints on the default printer; with --dialog the broker asks for one first. The page wants Letter or A4\n"
       "paper. A printer that knows no raster operations shows the mask black and white, not orange over grey.",
       {{"--dialog", false}},
       0,
       0,
       PrintTest},
  };
  return commands;
}
