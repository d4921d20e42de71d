#include "ui/toolkit/MHTMLLink.h"

#include "ui/toolkit/MWindow.h"

namespace {

constexpr int32_t kLinkControlId = 1;

}  // namespace

MHTMLLink::MHTMLLink(const MString& address, uint32_t normal, uint32_t hover)
    : url(address), normalColor(normal), hoverColor(hover) {
  controlId = kLinkControlId;
  handler = [](MRegion* region, MWindow* window, const Point*, bool inside, uint32_t message, void*) {
    return static_cast<MHTMLLink*>(region)->OnPointer(
        window, inside, message, [](MHTMLLink& link, MWindow& in) { in.platform->OpenUrl(link.url); });
  };
  handlerContext = &underline;
  underline.drawFlags = kDrawFill;
  underline.image = ImageRef::Color(normal);
  Attach(&underline);
}

MHTMLLink::~MHTMLLink() = default;

void MHTMLLink::Layout() {
  underline.bounds = Rect::Of(0, bounds.Height() - 1, bounds.Width(), 1);
}

bool MHTMLLink::OnPointer(MWindow* window, bool inside, uint32_t message,
                          void (*open)(MHTMLLink& link, MWindow& window)) {
  PointerEvent event{};
  if (!ToPointerEvent(message, inside, event)) return false;
  const LinkStep step = StepLink(state, event);
  state = step.next;
  if (step.capture == CaptureStep::Take) {
    window->SetCapture(this);
    window->SetCursorKind(CursorKind::Hand);
  } else if (step.capture == CaptureStep::Return) {
    window->ReleaseCapture();
    window->SetCursorKind(CursorKind::Arrow);
  }
  if (step.look != Look::Keep) {
    underline.image = ImageRef::Color(step.look == Look::Hover ? hoverColor : normalColor);
  }
  underline.Invalidate();
  if (step.takesFocus && nativeWindow != nullptr) window->SetFocusRegion(this, window->ringVisible);
  // Last, since what it starts may pump messages.
  if (step.opens) open(*this, *window);
  return step.consumed;
}

MNCPLink::MNCPLink(const MString& address, uint32_t normal, uint32_t hover) : MHTMLLink(address, normal, hover) {
  handler = [](MRegion* region, MWindow* window, const Point*, bool inside, uint32_t message, void*) {
    return static_cast<MNCPLink*>(region)->OnPointer(
        window, inside, message, [](MHTMLLink&, MWindow& in) { in.platform->OpenSettingsApplet(); });
  };
}
