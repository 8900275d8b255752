#include "HostRunner/SpatialReference.h"

#include <QString>

#include <ogr_spatialref.h>

namespace HostRunner {

bool ReadSpatialReference(const QString& text, OGRSpatialReference* srs)
{
    QString input = text;
    bool isNumber = false;
    input.toInt(&isNumber);
    if (isNumber)
        input.prepend(QLatin1String("EPSG:")); // a bare code is the common shorthand
    const QByteArray bytes = input.toUtf8();
    return srs->SetFromUserInput(bytes.constData(), OGRSpatialReference::SET_FROM_USER_INPUT_LIMITATIONS_get())
           == OGRERR_NONE;
}

} // namespace HostRunner
