#pragma once

#include <QList>
#include <QString>

class QDomElement;
class QXmlStreamWriter;

namespace Plugin {

class ATBItem;

// Reads and writes the tool box tree (a GB2312 XML file). The items are not
// owned: whoever takes the list owns them.
class ATBConfigFile
{
public:
    // Appends the items of path to the list; false when the file can't be read,
    // isn't well-formed, or isn't a tool box, and then the list is unchanged.
    bool Load(const QString& path);
    // Writes the list to path. Until the new text is complete the old file stays
    // as it was, so a failed write never costs the user the tool box.
    bool Save(const QString& path) const;

    QList<ATBItem*>& GetItems() { return m_items; }

private:
    static void ReadChildren(const QDomElement& element, QList<ATBItem*>& target);
    static void WriteItem(QXmlStreamWriter& writer, ATBItem* item);

    QList<ATBItem*> m_items;
};

} // namespace Plugin
