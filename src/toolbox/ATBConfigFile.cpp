#include "toolbox/ATBConfigFile.h"

#include "model/Gb2312.h"
#include "toolbox/ATBAlgo.h"
#include "toolbox/ATBAlgoDepend.h"
#include "toolbox/ATBFolder.h"
#include "toolbox/ATBGroup.h"
#include "toolbox/ATBIterator.h"
#include "toolbox/ATBPython.h"

#include <QDomDocument>
#include <QFile>
#include <QXmlStreamWriter>

namespace Plugin {

namespace {

const QString kName = QStringLiteral("name");
const QString kDescription = QStringLiteral("description");
const QString kFile = QStringLiteral("file");

// Only the exact text "1" is true.
bool flag(const QDomElement& e, const QString& attribute) { return e.attribute(attribute) == QLatin1String("1"); }

} // namespace

bool ATBConfigFile::Load(const QString& path)
{
    QDomDocument document(QStringLiteral("ATBFile"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    // Characters beyond the basic plane are written as one reference each,
    // which the DOM reader takes only as a surrogate pair.
    const QByteArray bytes = Gb2312::ReadableReferences(file.readAll());
    file.close();
    if (!document.setContent(bytes, true))
        return false;
    const QDomElement root = document.documentElement();
    if (root.tagName() != QLatin1String("Configuration"))
        return false;
    for (QDomNode n = root.firstChild(); !n.isNull(); n = n.nextSibling())
        if (n.toElement().tagName() == QLatin1String("ToolBox"))
            ReadChildren(n.toElement(), m_items);
    return true;
}

void ATBConfigFile::ReadChildren(const QDomElement& element, QList<ATBItem*>& target)
{
    for (QDomNode n = element.firstChild(); !n.isNull(); n = n.nextSibling()) {
        const QDomElement e = n.toElement();
        const QString tag = e.tagName(); // empty for comments and text
        if (tag == QLatin1String("Group")) {
            auto* group = new ATBGroup;
            group->SetName(e.attribute(kName));
            ReadChildren(e, group->GetChildren());
            target.append(group);
        } else if (tag == QLatin1String("Algo")) {
            auto* algo = new ATBAlgo;
            algo->SetName(e.attribute(kName));
            algo->SetMetadata(e.attribute(QStringLiteral("metadata")));
            algo->SetDescription(e.attribute(kDescription));
            target.append(algo);
        } else if (tag == QLatin1String("Iterator")) {
            auto* iterator = new ATBIterator;
            iterator->SetName(e.attribute(kName));
            iterator->SetClass(e.attribute(QStringLiteral("class")));
            iterator->SetDescription(e.attribute(kDescription));
            target.append(iterator);
        } else if (tag == QLatin1String("APC")) {
            auto* model = new ATBAlgoDepend(flag(e, QStringLiteral("readOnly")));
            model->SetName(e.attribute(kName));
            model->SetFile(e.attribute(kFile));
            model->SetDescription(e.attribute(kDescription));
            target.append(model);
        } else if (tag == QLatin1String("Python")) {
            auto* script = new ATBPython;
            script->SetName(e.attribute(kName));
            script->SetFile(e.attribute(kFile));
            script->SetDescription(e.attribute(kDescription));
            target.append(script);
        } else if (tag == QLatin1String("Folder")) {
            auto* folder = new ATBFolder(flag(e, QStringLiteral("canDelete")));
            folder->SetName(e.attribute(kName));
            ReadChildren(e, folder->GetChildren());
            target.append(folder);
        }
    }
}

bool ATBConfigFile::Save(const QString& path) const
{
    return Gb2312::SaveDocument(path, [this](QXmlStreamWriter& writer) {
        writer.writeStartElement(QStringLiteral("Configuration"));
        writer.writeStartElement(QStringLiteral("ToolBox"));
        writer.writeAttribute(kName, QStringLiteral("ToolBox"));
        for (ATBItem* item : m_items)
            WriteItem(writer, item);
        writer.writeEndElement();
        writer.writeEndElement();
    });
}

void ATBConfigFile::WriteItem(QXmlStreamWriter& writer, ATBItem* item)
{
    // A leaf: the name, the attributes of its kind in order, the description.
    auto leaf = [&](const QString& tag, const QList<QPair<QString, QString>>& attributes) {
        writer.writeStartElement(tag);
        writer.writeAttribute(kName, item->GetName());
        for (const auto& a : attributes)
            writer.writeAttribute(a.first, a.second);
        writer.writeAttribute(kDescription, item->GetDescription());
        writer.writeEndElement();
    };
    // A container: the name, the flag when set, then the children.
    auto container = [&](const QString& tag, const QString& flagName, bool flagSet, const QList<ATBItem*>& children) {
        writer.writeStartElement(tag);
        writer.writeAttribute(kName, item->GetName());
        if (flagSet)
            writer.writeAttribute(flagName, QStringLiteral("1"));
        for (ATBItem* child : children)
            WriteItem(writer, child);
        writer.writeEndElement();
    };
    const QString one = QStringLiteral("1");
    switch (item->GetType()) {
    case ATB_Group:
        if (auto* group = dynamic_cast<ATBGroup*>(item))
            container(QStringLiteral("Group"), QString(), false, group->GetChildren());
        break;
    case ATB_Folder:
        if (auto* folder = dynamic_cast<ATBFolder*>(item))
            container(QStringLiteral("Folder"), QStringLiteral("canDelete"), folder->GetCanDelete(), folder->GetChildren());
        break;
    case ATB_AlgoDepend:
        if (auto* model = dynamic_cast<ATBAlgoDepend*>(item)) {
            QList<QPair<QString, QString>> attributes;
            if (model->GetReadOnly())
                attributes.append({QStringLiteral("readOnly"), one});
            attributes.append({kFile, model->GetFile()});
            leaf(QStringLiteral("APC"), attributes);
        }
        break;
    case ATB_Algo: // an algorithm's file is made from its metadata, never written
        if (auto* algo = dynamic_cast<ATBAlgo*>(item))
            leaf(QStringLiteral("Algo"), {{QStringLiteral("metadata"), algo->GetMetadata()}});
        break;
    case ATB_Iterator:
        if (auto* iterator = dynamic_cast<ATBIterator*>(item))
            leaf(QStringLiteral("Iterator"), {{QStringLiteral("class"), iterator->GetClass()}});
        break;
    case ATB_Python:
        if (auto* script = dynamic_cast<ATBPython*>(item))
            leaf(QStringLiteral("Python"), {{kFile, script->GetFile()}});
        break;
    default:
        break;
    }
}

} // namespace Plugin
