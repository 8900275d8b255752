#include "engine/APCRasterFileIterator.h"
#include "model/APCDialogFactory.h"

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

APCObjectDialog* APCRasterFileIterator::CreateDialog(QWidget* parent)
{
    return APCDialogFactory::Instance()->CreateDialog(APCDialogFactory::FileIteratorDialog, this, parent);
}

} // namespace Plugin
