#include "model/APCProcessFactory.h"

#include "engine/APCAlgo.h"
#include "engine/APCModelFile.h"
#include "engine/APCRasterFileIterator.h"
#include "engine/APCVectorFileIterator.h"

namespace Plugin {

APCProcessFactory* APCProcessFactory::Instance()
{
    static APCProcessFactory instance;
    return &instance;
}

APCProcess* APCProcessFactory::Create(const QString& className)
{
    if (className == QLatin1String("algo"))
        return new APCAlgo;
    if (className == QLatin1String("RasterFileIterator"))
        return new APCRasterFileIterator;
    if (className == QLatin1String("VectorFileIterator"))
        return new APCVectorFileIterator;
    if (className == QLatin1String("model"))
        return new APCModelFile;
    return nullptr;
}

} // namespace Plugin
