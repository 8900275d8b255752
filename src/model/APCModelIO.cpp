// Reading and writing of the .apc file: XML in GB2312.
#include "model/APCModel.h"

#include "model/APCArrow.h"
#include "model/APCProcess.h"
#include "model/APCProcessFactory.h"
#include "model/APCVar.h"
#include "model/APCVarFactory.h"
#include "model/Gb2312.h"

#include <QDomDocument>
#include <QFile>
#include <QXmlStreamWriter>

#include <vector>

namespace Plugin {

namespace {

thread_local int loadDepth = 0;
thread_local std::vector<std::function<void()>> atLoadEnd;

class LoadScope
{
public:
    LoadScope() { ++loadDepth; }
    ~LoadScope()
    {
        if (--loadDepth > 0)
            return;
        const std::vector<std::function<void()>> forget = std::move(atLoadEnd);
        atLoadEnd.clear();
        for (const std::function<void()>& f : forget)
            f();
    }
};

} // namespace

bool APCModel::Loading() { return loadDepth > 0; }

void APCModel::WhenLoadEnds(std::function<void()> forget)
{
    if (loadDepth > 0)
        atLoadEnd.push_back(std::move(forget));
    else
        forget();
}

bool APCModel::LoadFile(const QString& path)
{
    const LoadScope scope;
    QDomDocument doc(QStringLiteral("APCFile"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = Gb2312::ReadableReferences(file.readAll());
    file.close();
    if (!doc.setContent(bytes, true))
        return false;
    return ReadDocument(doc);
}

bool APCModel::ReadDocument(const QDomDocument& doc)
{
    const QDomElement root = doc.documentElement();
    if (root.tagName() != QLatin1String("Configuration"))
        return false;
    // What a save would drop goes now, so that the model read is the one saved.
    Gb2312::DropUnwritableCharacters(root);

    for (QDomNode child = root.firstChild(); !child.isNull(); child = child.nextSibling()) {
        if (!child.isElement())
            continue;
        const QString tag = child.toElement().tagName();
        if (tag == QLatin1String("Processes"))
            ReadProcesses(child);
        else if (tag == QLatin1String("Vars"))
            ReadVars(child);
        else if (tag == QLatin1String("Arrows"))
            ReadArrows(child);
    }
    InvalidateIndex();
    for (APCProcess* p : m_processes)
        p->SetModel(this);
    for (APCVar* v : m_vars)
        v->SetModel(this);
    for (APCArrow* a : m_arrows)
        a->SetModel(this);
    return true;
}

void APCModel::ReadProcesses(const QDomNode& node)
{
    for (QDomElement e = node.firstChildElement(QStringLiteral("Process")); !e.isNull();
         e = e.nextSiblingElement(QStringLiteral("Process"))) {
        // An unknown class adds no process.
        APCProcess* process = APCProcessFactory::Instance()->Create(e.attribute(QStringLiteral("class")));
        if (!process)
            continue;
        process->ReadXml(e);
        m_processes.append(process);
    }
}

void APCModel::ReadVars(const QDomNode& node)
{
    for (QDomElement e = node.firstChildElement(QStringLiteral("Var")); !e.isNull();
         e = e.nextSiblingElement(QStringLiteral("Var"))) {
        APCVar* var = APCVarFactory::Instance()->Create(e.attribute(QStringLiteral("class")));
        var->ReadXml(e);
        m_vars.append(var);
    }
}

void APCModel::ReadArrows(const QDomNode& node)
{
    for (QDomElement e = node.firstChildElement(QStringLiteral("Arrow")); !e.isNull();
         e = e.nextSiblingElement(QStringLiteral("Arrow"))) {
        auto* arrow = new APCArrow;
        arrow->ReadXml(e);
        m_arrows.append(arrow);
    }
}

bool APCModel::SaveFile(const QString& path)
{
    return Gb2312::SaveDocument(path, [this](QXmlStreamWriter& writer) { WriteConfiguration(writer); });
}

namespace {

// The saved form of one object, as WriteConfiguration writes it.
QString savedForm(APCObject* object)
{
    QString text;
    QXmlStreamWriter writer(&text);
    object->WriteXml(writer, true);
    return text;
}

template <class T>
QVector<QString> savedForms(const QList<T*>& objects)
{
    QVector<QString> texts;
    texts.reserve(objects.size());
    for (T* object : objects)
        texts << savedForm(object);
    return texts;
}

} // namespace

ModelSnapshot APCModel::Snapshot() const
{
    return {savedForms(m_processes), savedForms(m_vars), savedForms(m_arrows)};
}

template <class T>
void APCModel::RestoreList(QList<T*>& list, const QVector<QString>& target, const QVector<QString>& current,
                           const std::function<T*(const QDomElement&)>& make, QList<APCObject*>* removed,
                           QList<APCObject*>* added)
{
    QMultiHash<QString, int> unchanged;
    if (current.size() == list.size())
        for (int i = 0; i < current.size(); ++i)
            unchanged.insert(current[i], i);
    QVector<bool> kept(list.size(), false);
    QList<T*> result;
    for (const QString& text : target) {
        const auto found = unchanged.find(text);
        if (found != unchanged.end()) {
            kept[found.value()] = true;
            result << list[found.value()];
            unchanged.erase(found);
            continue;
        }
        QDomDocument doc;
        if (!doc.setContent(text))
            continue;
        if (T* object = make(doc.documentElement())) {
            object->ReadXml(doc.documentElement());
            object->SetModel(this);
            result << object;
            added->append(object);
        }
    }
    for (int i = 0; i < list.size(); ++i)
        if (!kept[i])
            removed->append(list[i]);
    list = result;
}

void APCModel::Restore(const ModelSnapshot& target, const ModelSnapshot& current, QList<APCObject*>* removed,
                       QList<APCObject*>* added)
{
    const LoadScope scope;
    RestoreList<APCProcess>(
        m_processes, target.processes, current.processes,
        [](const QDomElement& e) { return APCProcessFactory::Instance()->Create(e.attribute(QStringLiteral("class"))); },
        removed, added);
    RestoreList<APCVar>(
        m_vars, target.vars, current.vars,
        [](const QDomElement& e) { return APCVarFactory::Instance()->Create(e.attribute(QStringLiteral("class"))); },
        removed, added);
    RestoreList<APCArrow>(
        m_arrows, target.arrows, current.arrows, [](const QDomElement&) { return new APCArrow; }, removed, added);
    InvalidateIndex();
}

void APCModel::WriteConfiguration(QXmlStreamWriter& writer) const
{
    writer.writeStartElement(QStringLiteral("Configuration"));
    writer.writeComment(QStringLiteral("算法"));
    writer.writeStartElement(QStringLiteral("Processes"));
    for (APCProcess* p : m_processes)
        p->WriteXml(writer, true);
    writer.writeEndElement();
    writer.writeComment(QStringLiteral("数据"));
    writer.writeStartElement(QStringLiteral("Vars"));
    for (APCVar* v : m_vars)
        v->WriteXml(writer, true);
    writer.writeEndElement();
    writer.writeComment(QStringLiteral("依赖关系"));
    writer.writeStartElement(QStringLiteral("Arrows"));
    for (APCArrow* a : m_arrows)
        a->WriteXml(writer, true);
    writer.writeEndElement();
    writer.writeEndElement();
}

} // namespace Plugin
