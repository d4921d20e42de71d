// AddOnSetup trust DER | distrust DER | stop: what the account of the add-on products needs done from inside.

#include "tests/support/DemoAddOnProcess.h"
#include "tests/support/TestFiles.h"
#include "tests/support/WebServer.h"

int wmain(int count, wchar_t** words) {
  const WideString what = count > 1 ? words[1] : L"";
  if (what == L"stop") {
    demo_addon::Stop();
    return 0;
  }
  if (count != 3 || (what != L"trust" && what != L"distrust")) return 2;
  const std::string der = testing_files::ReadWhole(words[2]);
  if (what == L"trust") AddTrustedRoot(der);
  if (what == L"distrust") RemoveTrustedRoot(der);
  return 0;
}
