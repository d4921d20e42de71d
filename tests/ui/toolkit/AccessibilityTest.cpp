// What a screen reader is told: the proxies of real regions, reached as a reader reaches them, and after their region.
#include <windows.h>

#include <gtest/gtest.h>
#include <oleacc.h>

#include <optional>

#include "engine/ComSupport.h"
#include "engine/DllHelpers.h"
#include "tests/ui/toolkit/WindowFixture.h"
#include "ui/toolkit/MTextArea.h"
#include "ui/toolkit/Widgets.h"

namespace {

VARIANT Child(LONG id, VARTYPE type = VT_I4) {
  VARIANT child = {};
  child.vt = type;
  child.lVal = id;
  return child;
}
const VARIANT kSelf = Child(CHILDID_SELF);

// The platform's way: it sends WM_GETOBJECT to the window and unpacks the answer.
ComPtr<IAccessible> ObjectOf(HWND window) {
  static BoundFunction<decltype(::AccessibleObjectFromWindow)> find(L"oleacc.dll", "AccessibleObjectFromWindow");
  ComPtr<IAccessible> object;
  const HRESULT found = find.Get()(window, static_cast<DWORD>(OBJID_CLIENT), IID_IAccessible,
                                   reinterpret_cast<void**>(object.GetAddressOf()));
  EXPECT_EQ(found, S_OK);
  return object;
}

LONG StateOf(IAccessible& object) {
  VARIANT state = {};
  EXPECT_EQ(object.get_accState(Child(7), &state), S_OK) << "asked for any child";
  EXPECT_EQ(state.vt, VT_I4);
  return state.lVal;
}

class Accessibility : public WindowFixture {
 protected:
  std::unique_ptr<MCheckboxButton> Box(bool checked, const wchar_t* label) {
    auto box = MakeCheckbox(&window, ImageRef(), checked);
    box->label = MString(label);
    return box;
  }

  ComInitializer com;
  MRadioGroup group;
};

TEST_F(Accessibility, EachControlHasItsNameRoleStateAndPlace) {
  auto text = std::make_unique<MTextArea>(&window, 16, true, false);
  text->drawFlags |= kNativeChild;
  text->SetText(MString(L"Read <strong>this</strong>"));
  const struct {
    MRegion* region;
    std::optional<std::string> name;
    LONG role, state, left, top;
  } rows[] = {
      {Place(MakeButton(&window, ImageRef(), MString(L"INSTALL")), Rect::Of(10, 20, 140, 33)), "INSTALL",
       ROLE_SYSTEM_PUSHBUTTON, 1048576, 10, 20},
      {Place(Box(true, L"I agree \x00AE"), Rect::Of(10, 70, 15, 15)), "I agree \xC2\xAE", ROLE_SYSTEM_CHECKBUTTON,
       1048592, 10, 70},
      {Place(MakeRadio(&window, ImageRef(), true, 0, &group), Rect::Of(10, 100, 15, 15)), std::nullopt,
       ROLE_SYSTEM_RADIOBUTTON, 1048592, 10, 100},
      {Place(std::move(text), Rect::Of(10, 130, 200, 40)), "Read <strong>this</strong>", ROLE_SYSTEM_STATICTEXT,
       STATE_SYSTEM_READONLY, 10, 130},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.role);
    const ComPtr<IAccessible> object = ObjectOf(row.region->nativeWindow);
    ASSERT_NE(object.Get(), nullptr);
    BString name;
    EXPECT_EQ(object->get_accName(kSelf, name.Receive()), S_OK);
    EXPECT_EQ(name.Get() == nullptr ? std::nullopt : std::optional(ToUtf8(name.View())), row.name);
    VARIANT role = {};
    EXPECT_EQ(object->get_accRole(Child(9), &role), S_OK);
    EXPECT_EQ(std::pair(role.vt, role.lVal), std::pair(VARTYPE{VT_I4}, row.role));
    EXPECT_EQ(StateOf(*object.Get()), row.state);
    LONG left = 0, top = 0, width = 0, height = 0;
    ASSERT_EQ(object->accLocation(&left, &top, &width, &height, kSelf), S_OK);
    POINT corner = {row.left, row.top};
    ClientToScreen(window.handle, &corner);
    EXPECT_EQ(Rect::Of(left, top, width, height),
              Rect::Of(corner.x, corner.y, row.region->bounds.Width(), row.region->bounds.Height()));
  }
}

TEST_F(Accessibility, FocusAndCheckAreSeenAsTheyChange) {
  auto* const box = Place(Box(false, L""), Rect::Of(10, 70, 15, 15));
  const ComPtr<IAccessible> object = ObjectOf(box->nativeWindow);
  EXPECT_EQ(StateOf(*object.Get()), 1048576);
  window.SetFocusRegion(box, true);
  box->checked = true;
  EXPECT_EQ(StateOf(*object.Get()), 1048596);
  box->Detach();
  EXPECT_EQ(StateOf(*object.Get()), 1048592) << "its window is gone, and its proxy still answers";
}

// Where a method is to write, whatever it is.
struct Out {
  void* to;
  template <class Type>
  operator Type*() const {
    return static_cast<Type*>(to);
  }
};
std::vector<HRESULT> AskAll(IAccessible& object, VARIANT child, void* place) {
  const Out out = {place};
  return {object.get_accName(child, out),
          object.get_accValue(child, out),
          object.get_accDescription(child, out),
          object.get_accKeyboardShortcut(child, out),
          object.get_accDefaultAction(child, out),
          object.accLocation(out, out, out, out, child),
          object.get_accChildCount(out),
          object.get_accChild(child, out),
          object.get_accRole(child, out),
          object.get_accState(child, out),
          object.get_accSelection(out)};
}

TEST_F(Accessibility, EveryMethodAnswersAsDocumentedWithItsRegionAndWithout) {
  auto box = Box(false, L"");
  window.Attach(box.get());
  const ComPtr<IAccessible> object = ObjectOf(box->nativeWindow);
  VARIANT written = {};
  const auto all = [](HRESULT answer) { return std::vector<HRESULT>(11, answer); };
  std::vector<HRESULT> otherChild(6, E_INVALIDARG);
  otherChild.insert(otherChild.end(), {S_OK, S_FALSE, S_OK, S_OK, S_OK});
  EXPECT_EQ(AskAll(*object.Get(), kSelf, &written), all(S_OK));
  EXPECT_EQ(AskAll(*object.Get(), Child(1), &written), otherChild);
  EXPECT_EQ(AskAll(*object.Get(), Child(0, VT_I2), &written), otherChild) << "a child of another type";
  EXPECT_EQ(AskAll(*object.Get(), kSelf, nullptr), all(E_INVALIDARG));
  box.reset();
  EXPECT_EQ(AskAll(*object.Get(), kSelf, &written), all(CO_E_OBJNOTCONNECTED)) << "after the region";
}

}  // namespace
