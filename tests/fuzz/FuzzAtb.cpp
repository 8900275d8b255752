// libFuzzer target: any bytes given to the tool box reader either load or are
// refused. A tree that loads saves; its saved file loads again and saves to the
// same text.
#include "fuzz/FuzzSupport.h"
#include "toolbox/ATBConfigFile.h"
#include "toolbox/ATBItem.h"

#include <QApplication>

#include <cstddef>
#include <cstdint>

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
    bool LoadFile(const QString& path) { return file.Load(path); }
    bool SaveFile(const QString& path) { return file.Save(path); }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static Fixture fixture;
    const Fuzz::NoSoftAssert check;
    fixture.RoundTrip<Tree>(data, size);
    return 0;
}
