#include "engine/APCVectorFileIterator.h"
#include "model/APCDialogFactory.h"

#include <QCoreApplication>

namespace Plugin {

APCVectorFileIterator::APCVectorFileIterator()
{
    SetClass(QStringLiteral("VectorFileIterator"));
    for (APCParameter& p : GetParameters())
        if (p.name == QLatin1String("strFilter"))
            p.value = QCoreApplication::translate("APCVectorFileIterator", "{\"Out File\":\"*.shp;*.000\"}");
    RefreshOutputs();
}

APCObject* APCVectorFileIterator::Clone()
{
    auto* copy = new APCVectorFileIterator;
    copy->CopyFileIteratorFrom(*this);
    return copy;
}

APCObjectDialog* APCVectorFileIterator::CreateDialog(QWidget* parent)
{
    return APCDialogFactory::Instance()->CreateDialog(APCDialogFactory::FileIteratorDialog, this, parent);
}

} // namespace Plugin
