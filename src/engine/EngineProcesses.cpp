// The kinds of process the engine runs, made known to the model's factory when
// the library loads: the model itself names none of them.
#include "engine/APCAlgo.h"
#include "engine/APCModelFile.h"
#include "engine/APCRasterFileIterator.h"
#include "engine/APCVectorFileIterator.h"
#include "model/APCProcessFactory.h"

namespace Plugin {
namespace {

[[maybe_unused]] const bool registered = [] {
    APCProcessFactory* factory = APCProcessFactory::Instance();
    factory->Register(QStringLiteral("algo"), [] { return new APCAlgo; }, false);
    factory->Register(QStringLiteral("RasterFileIterator"), [] { return new APCRasterFileIterator; }, true);
    factory->Register(QStringLiteral("VectorFileIterator"), [] { return new APCVectorFileIterator; }, true);
    factory->Register(QStringLiteral("model"), [] { return new APCModelFile; }, false);
    return true;
}();

} // namespace
} // namespace Plugin
