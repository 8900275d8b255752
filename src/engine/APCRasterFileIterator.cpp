#include "engine/APCRasterFileIterator.h"

#include <QCoreApplication>

namespace Plugin {

APCRasterFileIterator::APCRasterFileIterator()
{
    SetClass(QStringLiteral("RasterFileIterator"));
    for (APCParameter& p : GetParameters())
        if (p.name == QLatin1String("strFilter"))
            p.value = QCoreApplication::translate("APCRasterFileIterator", "{\"Out File\":\"*.tif;*.tiff\"}");
    RefreshOutputs();
}

APCObject* APCRasterFileIterator::Clone()
{
    auto* copy = new APCRasterFileIterator;
    copy->CopyFileIteratorFrom(*this);
    return copy;
}

// The iterator dialog comes with the editor's dialogs.
APCObjectDialog* APCRasterFileIterator::CreateDialog(QWidget*) { return nullptr; }

} // namespace Plugin
