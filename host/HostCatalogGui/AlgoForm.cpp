#include "HostCatalogGui/AlgoForm.h"

#include "HostCatalog/AlgoConfig.h"
#include "HostCatalogGui/DataTypeFactory.h"
#include "HostCatalogGui/DefaultDataWidget.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace Plugin {

namespace {

enum Page { ValuePage, LinkPage };

// How a model's parameter value names a var: it begins with "%".
bool isVarReference(const QString& value)
{
    return value.startsWith(QLatin1Char('%'));
}

// The widget learns a parameter's direction from its typeParam; catalogues that
// keep the direction only in the parameter still get a save dialog for outputs.
QString typeParamOf(const Param& param)
{
    if (param.direction != 1)
        return param.typeParam;
    QJsonObject object;
    if (!param.typeParam.trimmed().isEmpty()) {
        QJsonParseError error{};
        const QJsonDocument doc = QJsonDocument::fromJson(param.typeParam.toUtf8(), &error);
        if (error.error != QJsonParseError::NoError || !doc.isObject())
            return param.typeParam;
        object = doc.object();
    }
    if (object.contains(QStringLiteral("direction")))
        return param.typeParam;
    object.insert(QStringLiteral("direction"), QStringLiteral("1"));
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

} // namespace

struct AlgoForm::Row
{
    QString label;                 // what the user reads, without the required mark
    bool required = false;
    QStackedWidget* pages = nullptr;
    DataTypeWidget* value = nullptr;  // the parameter's own widget
    DefaultDataWidget* link = nullptr; // the var reference, read-only

    QString GetValue() const { return pages->currentIndex() == LinkPage ? link->GetValue() : value->GetValue(); }
    void SetValue(const QString& text)
    {
        if (isVarReference(text)) {
            link->SetValue(text);
            pages->setCurrentIndex(LinkPage);
        } else {
            link->SetValue(QString());
            value->SetValue(text);
            pages->setCurrentIndex(ValuePage);
        }
    }
    // Back to the parameter's own widget, with the value it had before the link.
    void Unlink()
    {
        link->SetValue(QString());
        pages->setCurrentIndex(ValuePage);
        value->setFocus();
    }
};

AlgoForm::AlgoForm(const AlgoConfig& config, QWidget* parent) : QDialog(parent)
{
    setWindowFlags(windowFlags() & ~Qt::WindowContextHelpButtonHint & ~Qt::WindowMinimizeButtonHint
                   & ~Qt::WindowMaximizeButtonHint);
    setWindowTitle(config.GetDisplayText().isEmpty() ? config.GetName() : config.GetDisplayText());

    auto* layout = new QVBoxLayout(this);
    if (!config.help.isEmpty()) {
        auto* help = new QLabel(config.help, this);
        help->setObjectName(QStringLiteral("help"));
        help->setTextFormat(Qt::PlainText);
        help->setWordWrap(true);
        layout->addWidget(help);
    }

    m_scroll = new QScrollArea(this);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFrameShape(QFrame::NoFrame);
    auto* content = new QWidget(m_scroll);
    auto* rows = new QVBoxLayout(content);
    rows->setContentsMargins(0, 0, 0, 0);
    for (const Param& param : config.GetParams()) {
        Row row;
        row.label = param.description.isEmpty() ? param.name : param.description;
        row.required = !param.isOptional && param.defaultValue.isEmpty();
        const QString caption = row.required ? row.label + QStringLiteral(" *") : row.label;

        row.pages = new QStackedWidget(content);
        row.pages->setObjectName(param.name);
        row.pages->setToolTip(param.name);

        row.value = DataTypeFactory::CreateDataTypeWidget(param.type, typeParamOf(param));
        row.value->setParent(row.pages);
        row.value->SetCaption(caption);
        row.value->SetCaptionBold(row.required);
        row.pages->addWidget(row.value);

        auto* linkPage = new QWidget(row.pages);
        auto* linkLayout = new QHBoxLayout(linkPage);
        linkLayout->setContentsMargins(0, 0, 0, 0);
        row.link = new DefaultDataWidget(linkPage);
        row.link->SetCaption(caption);
        row.link->SetCaptionBold(row.required);
        row.link->SetReadOnly(true);
        row.link->setToolTip(QCoreApplication::translate("AlgoForm", "Linked to a variable of the model"));
        linkLayout->addWidget(row.link, 1);
        auto* unlink = new QPushButton(QCoreApplication::translate("AlgoForm", "Unlink"), linkPage);
        unlink->setObjectName(QStringLiteral("unlink"));
        unlink->setToolTip(QCoreApplication::translate("AlgoForm", "Enter a value here instead of taking the variable's"));
        unlink->setAutoDefault(false);
        linkLayout->addWidget(unlink, 0, Qt::AlignBottom);
        row.pages->addWidget(linkPage);
        const size_t index = m_rows.size();
        connect(unlink, &QPushButton::clicked, this, [this, index] { m_rows[index].Unlink(); });

        row.SetValue(param.defaultValue);
        rows->addWidget(row.pages);
        m_rows.push_back(row);
    }
    rows->addStretch(1);
    m_scroll->setWidget(content);
    layout->addWidget(m_scroll, 1);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    auto* ok = new QPushButton(QCoreApplication::translate("AlgoForm", "OK"), this);
    ok->setObjectName(QStringLiteral("ok"));
    ok->setDefault(true);
    auto* cancel = new QPushButton(QCoreApplication::translate("AlgoForm", "Cancel"), this);
    cancel->setObjectName(QStringLiteral("cancel"));
    cancel->setAutoDefault(false);
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    layout->addLayout(buttons);
    connect(ok, &QPushButton::clicked, this, &AlgoForm::OnOKClicked);
    connect(cancel, &QPushButton::clicked, this, &AlgoForm::OnCancelClicked);

    resize(qMax(480, sizeHint().width()), qMin(sizeHint().height(), 640));
}

AlgoForm::~AlgoForm() = default;

QStringList AlgoForm::GetValues() const
{
    QStringList values;
    for (const Row& row : m_rows)
        values << row.GetValue();
    return values;
}

void AlgoForm::SetValues(const QStringList& values)
{
    for (size_t i = 0; i < m_rows.size() && i < size_t(values.size()); ++i)
        m_rows[i].SetValue(values.at(int(i)));
}

void AlgoForm::OnOKClicked(bool)
{
    for (const Row& row : m_rows) {
        if (row.required && row.GetValue().isEmpty()) {
            QMessageBox::information(this, QCoreApplication::translate("AlgoForm", "Error"), QCoreApplication::translate("AlgoForm", "Please set value: %1").arg(row.label), QMessageBox::Ok);
            m_scroll->ensureWidgetVisible(row.pages);
            row.pages->currentWidget()->setFocus();
            return;
        }
    }
    accept();
}

void AlgoForm::OnCancelClicked(bool)
{
    close();
}

} // namespace Plugin
