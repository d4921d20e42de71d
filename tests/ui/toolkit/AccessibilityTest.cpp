// What a screen reader is told: the proxies of real regions, reached as a reader reaches them, and after their region.
#include <windows.h>

#include <gtest/gtest.h>
#include <oleacc.h>

#include <optional>

#include "engine/ComSupport.h"
#include "engine/DllHelpers.h"
#include "tests/ui/toolkit/WindowFixture.h"
#include "ui/toolkit/AccProxy.h"
#include "ui/toolkit/MAccProxyObject.h"
#include "ui/toolkit/MHTMLLink.h"
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

LONG StateOf(IAccessible& object, LONG before = 0) {
  VARIANT state = {};
  state.lVal = before;
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
  auto* const outer = Place(std::make_unique<MSkinnedSection>(), Rect::Of(30, 40, 200, 100));
  const auto clear = Box(false, L"");
  clear->bounds = Rect::Of(5, 6, 15, 15);
  outer->Attach(clear.get());
  const struct {
    MRegion* region;
    std::optional<std::string> name;
    LONG role, state, left, top;
  } rows[] = {
      {Place(MakeButton(&window, ImageRef(), MString(L"INSTALL")), Rect::Of(10, 20, 140, 33)), "INSTALL",
       ROLE_SYSTEM_PUSHBUTTON, 1048576, 10, 20},
      {Place(Box(true, L"I agree \x00AE"), Rect::Of(10, 70, 15, 15)), "I agree \xC2\xAE", ROLE_SYSTEM_CHECKBUTTON,
       1048592, 10, 70},
      {clear.get(), std::nullopt, ROLE_SYSTEM_CHECKBUTTON, 1048576, 35, 46},
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
    EXPECT_EQ(StateOf(*object.Get(), 0x8000), row.state | 0x8000) << "added to what is there";
    LONG left = 0, top = 0, width = 0, height = 0;
    ASSERT_EQ(object->accLocation(&left, &top, &width, &height, kSelf), S_OK);
    POINT corner = {row.left, row.top};
    ClientToScreen(window.handle, &corner);
    EXPECT_EQ(Rect::Of(left, top, width, height),
              Rect::Of(corner.x, corner.y, row.region->bounds.Width(), row.region->bounds.Height()));
    RECT native = {};
    GetWindowRect(row.region->nativeWindow, &native);
    EXPECT_EQ(native.left, left);
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
  window.Attach(box);
  EXPECT_NE(ObjectOf(box->nativeWindow).Get(), object.Get()) << "attached anew, it has a proxy of its own";
}

// Where a method is to write, whatever it is.
struct Out {
  void* to;
  template <class Type>
  operator Type*() const {
    return static_cast<Type*>(to);
  }
};
const struct {
  const char* name;
  HRESULT (*call)(IAccessible& object, VARIANT child, Out out);
  HRESULT otherChild;
} kMethods[] = {
    {"name", [](auto& object, auto id, Out out) { return object.get_accName(id, out); }, E_INVALIDARG},
    {"value", [](auto& object, auto id, Out out) { return object.get_accValue(id, out); }, E_INVALIDARG},
    {"description", [](auto& object, auto id, Out out) { return object.get_accDescription(id, out); }, E_INVALIDARG},
    {"keys", [](auto& object, auto id, Out out) { return object.get_accKeyboardShortcut(id, out); }, E_INVALIDARG},
    {"action", [](auto& object, auto id, Out out) { return object.get_accDefaultAction(id, out); }, E_INVALIDARG},
    {"location", [](auto& object, auto id, Out out) { return object.accLocation(out, out, out, out, id); },
     E_INVALIDARG},
    {"children", [](auto& object, auto, Out out) { return object.get_accChildCount(out); }, S_OK},
    {"child", [](auto& object, auto id, Out out) { return object.get_accChild(id, out); }, S_FALSE},
    {"role", [](auto& object, auto id, Out out) { return object.get_accRole(id, out); }, S_OK},
    {"state", [](auto& object, auto id, Out out) { return object.get_accState(id, out); }, S_OK},
    {"selection", [](auto& object, auto, Out out) { return object.get_accSelection(out); }, S_OK},
};

TEST_F(Accessibility, EveryMethodAnswersAsDocumentedWithItsRegionAndWithout) {
  auto box = Box(false, L"");
  window.Attach(box.get());
  const ComPtr<IAccessible> object = ObjectOf(box->nativeWindow);
  VARIANT written = {};
  const Out out = {&written};
  for (const auto& row : kMethods) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(row.call(*object.Get(), kSelf, out), S_OK);
    EXPECT_EQ(row.call(*object.Get(), Child(1), out), row.otherChild);
    EXPECT_EQ(row.call(*object.Get(), Child(0, VT_I2), out), row.otherChild) << "a child of another type";
    EXPECT_EQ(row.call(*object.Get(), kSelf, Out{nullptr}), E_INVALIDARG);
  }
  EXPECT_EQ(written.vt, VT_EMPTY) << "nothing is selected";
  ComPtr<IDispatch> same;
  EXPECT_EQ(object->get_accChild(kSelf, same.GetAddressOf()), S_OK);
  EXPECT_EQ(same.Get(), object.Get());
  box.reset();
  for (const auto& row : kMethods) {
    EXPECT_EQ(row.call(*object.Get(), kSelf, out), CO_E_OBJNOTCONNECTED) << row.name << " after the region";
  }
  for (const HRESULT answer : {object->get_accHelp(kSelf, nullptr), object->get_accFocus(nullptr),
                               object->accSelect(1, kSelf), object->accNavigate(1, kSelf, nullptr),
                               object->accDoDefaultAction(kSelf), object->put_accName(kSelf, nullptr)}) {
    EXPECT_EQ(answer, E_NOTIMPL);
  }
  EXPECT_EQ(object->get_accParent(nullptr), S_OK);
  EXPECT_EQ(object->accHitTest(1, 1, nullptr), S_FALSE);
}

TEST_F(Accessibility, ARegionAloneKeepsItsProxyAndAClientKeepsItLonger) {
  MSkinnedSection region;
  AccProxyOwner owner = MakeAccProxy(&region);
  MAccProxyObject* const proxy = owner.get();
  EXPECT_EQ(proxy->Release(), 0u) << "one too many by a client: while the region lives the object stays";
  EXPECT_EQ(proxy->AddRef(), 1u);
  const ComPtr<IAccessible> client(proxy);
  owner.reset();
  EXPECT_EQ(client->AddRef(), 2u);
  EXPECT_EQ(client->Release(), 1u);
}

}  // namespace
