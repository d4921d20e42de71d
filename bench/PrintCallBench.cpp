// What one fill costs beside a call that carries nothing, and beside the four calls that a client would make to have an
// object made, selected, the old one selected again, and the new one deleted. There is no method that makes a brush, so
// a font goes that way here: the same four round trips.
#include <windows.h>

#include <commdlg.h>

#include <cstdio>
#include <vector>

#include "bench/CallTiming.h"
#include "tests/support/BrokerProcess.h"
#include "tests/support/ByteArray.h"
#include "tests/support/TestPrinter.h"

namespace {

constexpr int kRounds = 300;

bool OutlinePath(ILumenBroker6* broker, ULONG dc) {
  return broker->BrokerBeginPath(dc) == S_OK && broker->BrokerMoveTo(dc, 100, 100) == S_OK &&
         broker->BrokerLineTo(dc, 200, 100) == S_OK && broker->BrokerLineTo(dc, 150, 200) == S_OK &&
         broker->BrokerEndPath(dc) == S_OK;
}

bool FourCalls(ILumenBroker6* broker, ULONG dc, SAFEARRAY* font) {
  ULONG made = 0;
  ULONG old = 0;
  ULONG ignored = 0;
  ULONG gone = 0;
  return broker->BrokerCreateFontIndirect(font, &made) == S_OK && broker->BrokerSelectObject(dc, made, &old) == S_OK &&
         broker->BrokerSelectObject(dc, old, &ignored) == S_OK && broker->BrokerDeleteObject(made, &gone) == S_OK &&
         gone != 0;
}

// A device context with a page begun, or 0.
ULONG BeginPage(ILumenBroker6* broker) {
  ULONG from = 1;
  ULONG to = 1;
  ULONG flags = PD_RETURNDC | PD_RETURNDEFAULT;
  ULONG dc = 0;
  ULONG paper[8] = {};
  const bool begun = broker->BrokerPrintDialog(0, &from, &to, &flags, &dc) == S_OK &&
                     broker->BrokerStartDoc(dc, &paper[0], &paper[1], &paper[2], &paper[3], &paper[4], &paper[5],
                                            &paper[6], &paper[7]) == S_OK &&
                     broker->BrokerStartPage(dc) == S_OK;
  return begun ? dc : 0;
}

int Run(ILumenBroker6* broker) {
  const ULONG dc = BeginPage(broker);
  if (dc == 0) {
    std::fprintf(stderr, "print_call_bench: no page to draw on\n");
    return 1;
  }
  const ByteArray font(std::string(sizeof(LOGFONTW), 0));
  std::vector<double> fills;
  std::vector<double> empties;
  std::vector<double> fours;
  bool well = true;
  // Taken in turns, so that whatever else the machine does meets all three.
  for (int i = 0; i < kRounds; ++i) {
    well = OutlinePath(broker, dc) && well;
    empties.push_back(Timed([&] { well = broker->BrokerFindClose(0) == E_INVALIDARG && well; }));
    fills.push_back(Timed([&] { well = broker->BrokerPathToSolidFill(dc, RGB(255, 0, 0)) == S_OK && well; }));
    fours.push_back(Timed([&] { well = FourCalls(broker, dc, font.Get()) && well; }));
  }
  well = broker->BrokerEndPage(dc) == S_OK && broker->BrokerEndDoc(dc) == S_OK && well;
  ULONG gone = 0;
  (void)broker->BrokerDeleteDC(dc, &gone);
  if (!well) {
    std::fprintf(stderr, "print_call_bench: a call did not do what it should\n");
    return 1;
  }
  const double fill = Median(fills);
  const double empty = Median(empties);
  const double four = Median(fours);
  std::printf("path fill            one call    %8.1f us   empty call %8.1f us   ratio %5.2f\n", fill, empty,
              fill / empty);
  std::printf("path fill            one call    %8.1f us   four calls %8.1f us   ratio %5.2f\n", fill, four,
              fill / four);
  return 0;
}

}  // namespace

int main() {
  const ComInitializer apartment;
  const unsigned long installed =
      test_printer::Install(WidenAscii(LUMEN_SOURCE_DIR "/tests/data/test-printer.ppd"), L"/dev/null");
  ComPtr<ILumenBroker6> broker;
  const HRESULT activated = broker_process::Activate(broker);
  if (installed != 0 || FAILED(activated)) {
    std::fprintf(stderr, "print_call_bench: printer %lu, broker 0x%08lx\n", installed,
                 static_cast<unsigned long>(activated));
    return 1;
  }
  return Run(broker.Get());
}
