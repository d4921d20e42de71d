#include "ui/toolkit/MTooltipArea.h"

namespace {

constexpr DWORD kTipStyle = WS_POPUP | TTS_ALWAYSTIP;
static_assert(kTipStyle == 2147483649u);
constexpr LPARAM kInitialDelay = 100;  // milliseconds
constexpr LPARAM kAutoPopDelay = 30000;

}  // namespace

MTooltipArea::MTooltipArea(MWindow* inWindow, HWND ownerWindow, HWND control, HMODULE module)
    : window(inWindow), toolInfo(std::make_unique<TOOLINFOW>()) {
  static_assert(sizeof(TOOLINFOW) == 72);
  const INITCOMMONCONTROLSEX classes = {sizeof(classes), ICC_BAR_CLASSES};
  InitCommonControlsEx(&classes);
  tooltipHandle = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, kTipStyle, CW_USEDEFAULT, CW_USEDEFAULT,
                                  CW_USEDEFAULT, CW_USEDEFAULT, ownerWindow, nullptr, module, nullptr);
  SendMessageW(tooltipHandle, TTM_SETDELAYTIME, TTDT_INITIAL, kInitialDelay);
  SendMessageW(tooltipHandle, TTM_SETDELAYTIME, TTDT_AUTOPOP, kAutoPopDelay);
  *toolInfo = {};
  // Without its last, unused field: common controls before 6 refuse the whole record.
  toolInfo->cbSize = TTTOOLINFOW_V2_SIZE;
  toolInfo->uFlags = TTF_SUBCLASS | TTF_CENTERTIP;
  toolInfo->hwnd = control;
  toolInfo->hinst = module;
  SetText(MString(L""));
}

MTooltipArea::~MTooltipArea() {
  SetActive(false);
  DestroyWindow(tooltipHandle);
}

void MTooltipArea::Layout() {
  if (!active) return;
  toolInfo->rect = {bounds.left, bounds.top, bounds.right, bounds.bottom};
  Send(TTM_NEWTOOLRECTW);
}

void MTooltipArea::SetText(const MString& newText) {
  text = newText;
  // The control copies the text when it is sent; the record's pointer is read then alone.
  toolInfo->lpszText = const_cast<wchar_t*>(text.IsEmpty() ? L"" : text.Data());
  Send(TTM_UPDATETIPTEXTW);
}

void MTooltipArea::SetActive(bool on) {
  if (active == on) return;
  active = on;
  toolInfo->rect = {bounds.left, bounds.top, bounds.right, bounds.bottom};
  Send(on ? TTM_ADDTOOLW : TTM_DELTOOLW);
}

void MTooltipArea::Send(UINT message) {
  SendMessageW(tooltipHandle, message, 0, reinterpret_cast<LPARAM>(toolInfo.get()));
}
