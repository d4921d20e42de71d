// A link in a text: an invisible region over the words, with an underline that follows the pointer.
#pragma once

#include <cstdint>

#include "engine/MString.h"
#include "ui/toolkit/ButtonStates.h"
#include "ui/toolkit/MRegion.h"

class MHTMLLink : public MSkinnedSection {
 public:
  MHTMLLink(const MString& address, uint32_t normal, uint32_t hover);
  ~MHTMLLink() override;
  // Puts the underline into the last row.
  void Layout() override;

  MSkinnedSection underline;
  MString url;
  uint32_t normalColor;
  uint32_t hoverColor;
  int32_t state = kIdle;

 protected:
  // How `state` answers a message; false when it is none of the pointer's or the step does not consume it.
  bool OnPointer(MWindow* window, bool inside, uint32_t message, void (*open)(MHTMLLink& link, MWindow& window));
};

// Opens the player's settings in the control panel in place of an address.
class MNCPLink final : public MHTMLLink {
 public:
  MNCPLink(const MString& address, uint32_t normal, uint32_t hover);
};
