// libFuzzer target: any bytes given to the tool box reader either load or are
// refused. A tree that loads saves; its saved file loads again and saves to the
// same text.
#include "fuzz/FuzzSupport.h"
#include "toolbox/ATBConfigFile.h"
#include "toolbox/ATBItem.h"

#include <QApplication>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

// Model rows make their menus when read, so the reader needs an application
// with widgets.
struct Fixture : Fuzz::Application<QApplication>
{
    Fixture() : Application("fuzz_atb", "atb") {}
};

// The reader hands its items to whoever takes the list.
struct Tree
{
    Plugin::ATBConfigFile file;
    ~Tree() { qDeleteAll(file.GetItems()); }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static Fixture fixture;
    const Fuzz::NoSoftAssert check;
    Fuzz::WriteAll(fixture.input, reinterpret_cast<const char*>(data), size);
    {
        Tree tree;
        if (!tree.file.Load(fixture.input))
            return 0;
        if (!tree.file.Save(fixture.first))
            abort();
    }
    Tree again;
    if (!again.file.Load(fixture.first) || !again.file.Save(fixture.second))
        abort();
    fixture.SameSaves();
    return 0;
}
