#include <zelkin/SaveTemplateDialog.h>

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

#include <zelkin/TemplateLibrary.h>

SaveTemplateDialog::SaveTemplateDialog(const TemplateLibrary& library, const QString& name, const QString& prefix,
                                       QWidget* parent)
    : QDialog(parent)
    , mLibrary(library)
    , mName(new QLineEdit(name, this))
    , mPrefix(new QLineEdit(prefix, this))
{
    setWindowTitle(tr("Extract Mapping Template"));
    setModal(true);

    auto* explanation = new QLabel(
        tr("Extract a mapping template from the current characterization.\nThe prefix is removed from all bone names "
           "in the template."),
        this);
    mName->setToolTip(tr("Saved as %1").arg(library.UserPathFor(QStringLiteral("<name>"))));
    mPrefix->setPlaceholderText(tr("(none)"));

    auto* form = new QFormLayout;
    form->addRow(tr("Template &name:"), mName);
    form->addRow(tr("&Prefix to remove:"), mPrefix);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    mOk = buttons->button(QDialogButtonBox::Ok);
    connect(buttons, &QDialogButtonBox::accepted, this, &SaveTemplateDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &SaveTemplateDialog::reject);
    connect(mName, &QLineEdit::textChanged, this, &SaveTemplateDialog::UpdateState);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(explanation);
    layout->addLayout(form);
    layout->addWidget(buttons);

    mName->selectAll();
    mName->setFocus();
    UpdateState();
}

QString SaveTemplateDialog::GetTemplateName() const
{
    return mName->text().trimmed();
}

QString SaveTemplateDialog::GetPrefix() const
{
    return mPrefix->text();
}

bool SaveTemplateDialog::IsValidName(const QString& name)
{
    if (name.trimmed().isEmpty() || name.startsWith(QLatin1Char('.')) || name.contains(QLatin1String("..")))
        return false;
    for (const QChar c : name)
    {
        if (c == QLatin1Char('/') || c == QLatin1Char('\\') || c.category() == QChar::Other_Control)
            return false;
    }
    return true;
}

void SaveTemplateDialog::UpdateState()
{
    mOk->setEnabled(!GetTemplateName().isEmpty());
}

void SaveTemplateDialog::accept()
{
    const QString name = GetTemplateName();
    if (!IsValidName(name))
    {
        QMessageBox::warning(this, tr("Save Template"),
                             tr("\"%1\" cannot be used as a template name.\nA name must not be empty, start with a dot "
                                "or hold \"/\", \"\\\" or \"..\".")
                                 .arg(name),
                             QMessageBox::Ok);
        return;
    }
    if (mLibrary.Contains(name)
        && QMessageBox::question(this, tr("Save Template"),
                                 tr("A template with the same name already exists.\nDo you want to overwrite it?"),
                                 QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
               != QMessageBox::Yes)
        return;
    QDialog::accept();
}
