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
#include <QSaveFile>
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
    QString error;
    int line = 0;
    int column = 0;
    const bool parsed = document.setContent(&file, true, &error, &line, &column);
    file.close();
    if (!parsed)
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
    QSaveFile file(path);
    // Where no temporary file can be made beside it (a writable file in a
    // read-only folder), write in place as a plain file would.
    file.setDirectWriteFallback(true);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;

    // Written as text, then encoded: the declaration must name GB2312 whatever
    // the codec calls itself, and no character may be lost on the way.
    QString text;
    QXmlStreamWriter writer(&text);
    writer.setAutoFormatting(true);
    writer.writeStartDocument(QStringLiteral("1.0"), false);
    writer.writeStartElement(QStringLiteral("Configuration"));
    writer.writeStartElement(QStringLiteral("ToolBox"));
    writer.writeAttribute(kName, QStringLiteral("ToolBox"));
    for (ATBItem* item : m_items)
        WriteItem(writer, item);
    writer.writeEndElement();
    writer.writeEndElement();
    writer.writeEndDocument();

    file.write(Gb2312::EncodeDocument(text));
    return file.commit();
}

void ATBConfigFile::WriteItem(QXmlStreamWriter& writer, ATBItem* item)
{
    switch (item->GetType()) {
    case ATB_Group: {
        auto* group = dynamic_cast<ATBGroup*>(item);
        if (!group)
            break;
        writer.writeStartElement(QStringLiteral("Group"));
        writer.writeAttribute(kName, group->GetName());
        for (ATBItem* child : group->GetChildren())
            WriteItem(writer, child);
        writer.writeEndElement();
        break;
    }
    case ATB_Folder: {
        auto* folder = dynamic_cast<ATBFolder*>(item);
        if (!folder)
            break;
        writer.writeStartElement(QStringLiteral("Folder"));
        writer.writeAttribute(kName, folder->GetName());
        if (folder->GetCanDelete())
            writer.writeAttribute(QStringLiteral("canDelete"), QStringLiteral("1"));
        for (ATBItem* child : folder->GetChildren())
            WriteItem(writer, child);
        writer.writeEndElement();
        break;
    }
    case ATB_AlgoDepend: {
        auto* model = dynamic_cast<ATBAlgoDepend*>(item);
        if (!model)
            break;
        writer.writeStartElement(QStringLiteral("APC"));
        writer.writeAttribute(kName, model->GetName());
        if (model->GetReadOnly())
            writer.writeAttribute(QStringLiteral("readOnly"), QStringLiteral("1"));
        writer.writeAttribute(kFile, model->GetFile());
        writer.writeAttribute(kDescription, model->GetDescription());
        writer.writeEndElement();
        break;
    }
    case ATB_Algo: {
        auto* algo = dynamic_cast<ATBAlgo*>(item);
        if (!algo)
            break;
        writer.writeStartElement(QStringLiteral("Algo"));
        writer.writeAttribute(kName, algo->GetName());
        writer.writeAttribute(QStringLiteral("metadata"), algo->GetMetadata());
        writer.writeAttribute(kDescription, algo->GetDescription());
        writer.writeEndElement();
        break;
    }
    case ATB_Iterator: {
        auto* iterator = dynamic_cast<ATBIterator*>(item);
        if (!iterator)
            break;
        writer.writeStartElement(QStringLiteral("Iterator"));
        writer.writeAttribute(kName, iterator->GetName());
        writer.writeAttribute(QStringLiteral("class"), iterator->GetClass());
        writer.writeAttribute(kDescription, iterator->GetDescription());
        writer.writeEndElement();
        break;
    }
    case ATB_Python: {
        auto* script = dynamic_cast<ATBPython*>(item);
        if (!script)
            break;
        writer.writeStartElement(QStringLiteral("Python"));
        writer.writeAttribute(kName, script->GetName());
        writer.writeAttribute(kFile, script->GetFile());
        writer.writeAttribute(kDescription, script->GetDescription());
        writer.writeEndElement();
        break;
    }
    default:
        break;
    }
}

} // namespace Plugin
