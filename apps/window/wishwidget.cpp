#include "wishwidget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>

namespace {

QString sizeText(int width, int height)
{
    return QStringLiteral("%1x%2").arg(width).arg(height);
}

QComboBox *makeCombo(const QString &first, const QStringList &others, const QString &current)
{
    auto *combo = new QComboBox;
    combo->setEditable(true);
    combo->setInsertPolicy(QComboBox::NoInsert);
    combo->addItem(first);
    combo->addItems(others);
    combo->setCurrentText(current.isEmpty() ? first : current);
    return combo;
}

// What was chosen or typed; empty for the first entry.
QString valueOf(const QComboBox &combo)
{
    const QString text = combo.currentText().trimmed();
    return text == combo.itemText(0) ? QString() : text;
}

std::optional<QSize> sizeIn(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("^([1-9]\\d{0,4})x([1-9]\\d{0,4})$"));
    const auto match = pattern.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    return QSize(match.captured(1).toInt(), match.captured(2).toInt());
}

} // namespace

WishWidget::WishWidget(const Settings &settings, QWidget *parent) : QWidget(parent)
{
    auto *form = new QFormLayout(this);
    form->setContentsMargins(0, 0, 0, 0);
    m_folder = addFolder(form, tr("&Folder:"), settings.outputFolder);
    m_container = makeCombo(tr("Any"),
                            {QStringLiteral("mp4"), QStringLiteral("flv"), QStringLiteral("webm"),
                             QStringLiteral("avi"), QStringLiteral("mkv")},
                            settings.extension);
    form->addRow(tr("&Container:"), m_container);
    m_size =
        makeCombo(tr("Largest"),
                  {QStringLiteral("1920x1080"), QStringLiteral("1280x720"),
                   QStringLiteral("854x480"), QStringLiteral("640x360"), QStringLiteral("320x240")},
                  settings.width > 0 ? sizeText(settings.width, settings.height) : QString());
    form->addRow(tr("&Picture size:"), m_size);
    m_keep = new QCheckBox(tr("&Keep videos as the site offers them"));
    m_keep->setChecked(settings.keepSource);
    m_convert = new QCheckBox(tr("C&onvert with ffmpeg if the site has no such format"));
    m_convert->setChecked(settings.convert);
    m_convert->setDisabled(settings.keepSource);
    form->addRow(m_keep);
    form->addRow(m_convert);
    connect(m_keep, &QCheckBox::toggled, m_convert, &QWidget::setDisabled);
    connect(m_keep, &QCheckBox::toggled, this, &WishWidget::changed);
    connect(m_folder, &QLineEdit::textChanged, this, &WishWidget::changed);
    connect(m_container, &QComboBox::currentTextChanged, this, &WishWidget::changed);
    connect(m_size, &QComboBox::currentTextChanged, this, &WishWidget::changed);
}

QLineEdit *WishWidget::addFolder(QFormLayout *form, const QString &label, const QString &path)
{
    auto *row = new QHBoxLayout;
    auto *field = new QLineEdit(path);
    auto *button = new QPushButton(tr("Choose…"));
    button->setAccessibleName(tr("Choose a folder"));
    row->addWidget(field);
    row->addWidget(button);
    auto *caption = new QLabel(label);
    caption->setBuddy(field);
    form->addRow(caption, row);
    connect(button, &QPushButton::clicked, field, [field] {
        const QString folder =
            QFileDialog::getExistingDirectory(field, tr("Choose a folder"), field->text());
        if (!folder.isEmpty())
            field->setText(folder);
    });
    return field;
}

void WishWidget::apply(Settings &settings) const
{
    const QSize size = sizeIn(valueOf(*m_size)).value_or(QSize(0, 0));
    settings.outputFolder = m_folder->text();
    settings.extension = valueOf(*m_container);
    settings.width = size.width();
    settings.height = size.height();
    settings.keepSource = m_keep->isChecked();
    settings.convert = m_convert->isChecked() && !settings.keepSource;
}

void WishWidget::setFormat(const QString &extension, int width, int height)
{
    m_container->setCurrentText(extension);
    m_size->setCurrentText(sizeText(width, height));
}

QString WishWidget::problem() const
{
    if (!QDir::isAbsolutePath(m_folder->text()))
        return tr("Give the whole path of the folder.");
    const QString size = valueOf(*m_size);
    if (!size.isEmpty() && !sizeIn(size))
        return tr("Give the picture size as in 1280x720.");
    if (valueOf(*m_container).contains(QRegularExpression(QStringLiteral("[^A-Za-z0-9]"))))
        return tr("Give the container as in mp4.");
    return {};
}
