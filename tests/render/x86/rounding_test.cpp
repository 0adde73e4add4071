// tests/render/x86/rounding_test.cpp - frames do not depend on the control word of the x87 unit
#include "tests/render/scenes.h"

class Frame : public RenderTest
{
};

TEST_F(Frame, NoRoundingModeOfTheX87UnitChangesThePicture)
{
    Display display(160, 120);
    installMesh(&display.list, makeTorus(20, 30, 0.35f));
    display.drawWhole();
    auto before = display.cells();
    uint16_t saved, up;
    __asm__ volatile("fnstcw %0" : "=m"(saved));
    up = static_cast<uint16_t>((saved & ~0x0C00) | 0x0800);
    __asm__ volatile("fldcw %0" : : "m"(up));
    display.drawWhole();
    __asm__ volatile("fldcw %0" : : "m"(saved));
    EXPECT_EQ(display.cells(), before);
}
