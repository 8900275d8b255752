// libFuzzer target: any bytes given to the model reader either load or are
// refused. A model that loads saves; its saved file loads again and saves to the
// same text (a write-read-write round trip).
#include "fuzz/FuzzSupport.h"
#include "model/APCModel.h"

#include <QCoreApplication>
#include <QTextCodec>

#include <cstddef>
#include <cstdint>

namespace {

// Set up as mbrun is before it loads a model: an application object (its folder
// is where nested model steps find their files) and UTF-8 local text. The
// process kinds register themselves when the core library loads.
struct Fixture : Fuzz::Application<QCoreApplication>
{
    Fixture() : Application("fuzz_apc", "apc") { QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8")); }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static Fixture fixture;
    const Fuzz::NoSoftAssert check;
    // Loading emits nothing and removes nothing: the model owns all it read.
    fixture.RoundTrip<Plugin::APCModel>(data, size);
    return 0;
}
