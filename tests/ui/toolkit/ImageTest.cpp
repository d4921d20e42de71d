// Images from the resources of a module: this test program's own.
#include <windows.h>

#include <gtest/gtest.h>

#include "tests/support/CountFixture.h"
#include "ui/toolkit/MImage.h"

namespace {

TEST(Image, IsReadFromTheModuleBottomRowFirstAndGivenBack) {
  const size_t before = counts::GdiObjects();
  for (int i = 0; i < 100; ++i) {
    MImage image;
    image.Load(GetModuleHandleW(nullptr), 9999);
    EXPECT_EQ(image.Ref().Context(), nullptr) << "there is none";
    image.Load(GetModuleHandleW(nullptr), image_id::Skin);
    image.Load(GetModuleHandleW(nullptr), image_id::Skin);
    ASSERT_NE(image.Ref().Context(), nullptr);
    EXPECT_EQ(std::pair(image.Width(), image.Height()), std::pair(2, 2));
    EXPECT_EQ(GetPixel(image.Ref().Context(), 0, 1), RGB(0x30, 0x20, 0x10));
    EXPECT_EQ(GetPixel(image.Ref().Context(), 1, 0), RGB(3, 2, 1));
  }
  EXPECT_EQ(counts::GdiObjects(), before);
}

}  // namespace
