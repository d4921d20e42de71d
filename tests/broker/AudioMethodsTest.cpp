// Audio notification with a device enumerator of the test's own, which calls back from a thread of its own.
#include <windows.h>

#include <gtest/gtest.h>
#include <mmdeviceapi.h>

#include <thread>

#include "broker/CoLumenBrokerServer.h"
#include "tests/fakes/ShellFakes.h"
#include "tests/support/PlatformCounts.h"

namespace {

struct Devices {
  IMMNotificationClient* client = nullptr;
  bool counts = false;  // whether registering takes a reference, as some platforms do
  EDataFlow flow = eRender;
};
Devices g_devices;

struct Device final : SlotFake<IMMDevice, IMMEndpoint> {
  Device() {
    On(&IMMEndpoint::GetDataFlow, [](void*, EDataFlow* flow) -> HRESULT { return *flow = g_devices.flow, S_OK; });
  }
};

struct Enumerator final : SlotFake<IMMDeviceEnumerator> {
  Enumerator() {
    On(&IMMDeviceEnumerator::GetDevice, [](void*, LPCWSTR, IMMDevice** device) -> HRESULT {
      *device = (new Device)->Get();
      return S_OK;
    });
    On(&IMMDeviceEnumerator::RegisterEndpointNotificationCallback, [](void*, IMMNotificationClient* client) -> HRESULT {
      g_devices.client = client;
      if (g_devices.counts) client->AddRef();
      return S_OK;
    });
    On(&IMMDeviceEnumerator::UnregisterEndpointNotificationCallback,
       [](void*, IMMNotificationClient* client) -> HRESULT {
         if (g_devices.client != client) return E_INVALIDARG;
         g_devices.client = nullptr;
         if (g_devices.counts) client->Release();
         return S_OK;
       });
  }
};

class Audio : public testing::Test {
 protected:
  Audio() { g_devices = {}; }

  // Calls back from another thread and tells which of the two events came: of the default device, of a device's state.
  template <class Call>
  std::string Signalled(Call call) {
    std::thread([&] {
      if (g_devices.client != nullptr) call(g_devices.client);
    }).join();
    std::string seen;
    for (const KernelHandle& event : events) seen += WaitForSingleObject(event.Get(), 0) == WAIT_OBJECT_0 ? '+' : '-';
    return seen;
  }
  std::string DefaultChanges(EDataFlow flow, ERole role) {
    return Signalled([=](IMMNotificationClient* client) { client->OnDefaultDeviceChanged(flow, role, L"id"); });
  }
  LONG_PTR Create() {
    LONG_PTR cookie = 0;
    EXPECT_EQ(broker->BrokerMMNotificationClientCreate(ToNumber(GetCurrentProcess()), &cookie), S_OK);
    return cookie;
  }
  HRESULT SetBoth(LONG_PTR cookie) {
    const HRESULT first =
        broker->BrokerMMNotificationClientSetDefaultDeviceChangeEvent(cookie, ToNumber(events[0].Get()));
    const HRESULT second =
        broker->BrokerMMNotificationClientSetDeviceStateChangeEvent(cookie, ToNumber(events[1].Get()));
    return first == second ? first : E_UNEXPECTED;
  }
  static LONG_PTR ToNumber(HANDLE handle) { return reinterpret_cast<LONG_PTR>(handle); }

  ComInitializer apartment;
  shell_fakes::Registered<Enumerator> enumerator{__uuidof(MMDeviceEnumerator)};
  const KernelHandle events[2] = {KernelHandle(CreateEventW(nullptr, FALSE, FALSE, nullptr)),
                                  KernelHandle(CreateEventW(nullptr, FALSE, FALSE, nullptr))};
  ComPtr<ILumenBroker6> broker = Adopt<ILumenBroker6>(new CoLumenBrokerServer(nullptr));
};

TEST_F(Audio, WhichChangesSignal) {
  const LONG_PTR cookie = Create();
  EXPECT_EQ(DefaultChanges(eRender, eConsole), "--") << "no event is set";
  ASSERT_EQ(SetBoth(cookie), S_OK);
  EXPECT_EQ(DefaultChanges(eRender, eCommunications), "+-");
  ASSERT_EQ(SetBoth(cookie), S_OK) << "an event may be replaced";
  EXPECT_EQ(DefaultChanges(eCapture, eConsole), "--");
  EXPECT_EQ(DefaultChanges(eCapture, eMultimedia), "+-");
  const auto stateChanges = [](IMMNotificationClient* client) {
    EXPECT_EQ(client->OnDeviceStateChanged(L"id", 1), S_OK);
  };
  EXPECT_EQ(Signalled(stateChanges), "-+");
  g_devices.flow = eCapture;
  EXPECT_EQ(Signalled(stateChanges), "--");
}

// The entry stays in the list: a second destroy passes the lookup and releases again, and so does the object's own end.
TEST_F(Audio, DestroyingTwiceIsAnsweredAndTouchesNothingThatIsGone) {
  for (const bool counts : {false, true}) {
    g_devices = {};
    g_devices.counts = counts;
    const LONG_PTR cookie = Create();
    ASSERT_EQ(SetBoth(cookie), S_OK);
    EXPECT_EQ(broker->BrokerMMNotificationClientDestroy(cookie), S_OK);
    EXPECT_EQ(DefaultChanges(eRender, eConsole), counts ? "+-" : "--") << "the enumerator may still hold it";
    for (int i = 0; i < 5; ++i) EXPECT_EQ(broker->BrokerMMNotificationClientDestroy(cookie), S_OK);
    EXPECT_EQ(DefaultChanges(eRender, eConsole), "--");
    EXPECT_EQ(SetBoth(cookie), S_FALSE) << "a client that has ended takes no events";
  }
  g_devices = {};
  ASSERT_EQ(SetBoth(Create()), S_OK);
  ASSERT_NE(g_devices.client, nullptr);
  broker.Reset();
  EXPECT_EQ(g_devices.client, nullptr) << "the object's end leaves the enumerator";
}

TEST_F(Audio, ManyClientsLeaveNoHandles) {
  EXPECT_TRUE(LeavesNothing(40, [this](int) {
    const LONG_PTR cookie = Create();
    EXPECT_EQ(SetBoth(cookie), S_OK);
    EXPECT_EQ(broker->BrokerMMNotificationClientDestroy(cookie), S_OK);
  }));
}

}  // namespace
