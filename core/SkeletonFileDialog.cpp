#include "SkeletonFileDialog.h"

#include <QCheckBox>
#include <QGridLayout>

#include <zelkin/CharacterizationXml.h>

SkeletonFileDialog::SkeletonFileDialog(QWidget* parent, AcceptMode mode, const QString& directory)
    : QFileDialog(parent, mode == AcceptSave ? tr("Save Skeleton Definition") : tr("Load Skeleton Definition"),
                  directory)
{
    setOption(DontUseNativeDialog);
    setAcceptMode(mode);
    setFileMode(mode == AcceptSave ? AnyFile : ExistingFile);
    QStringList filters {NameFilter(BinaryLittleEndian), NameFilter(BinaryBigEndian), NameFilter(Xml)};
    if (mode == AcceptOpen)
        filters.prepend(tr("Skeleton Definition (*%1 *.xml)").arg(BinaryExtension()));
    setNameFilters(filters);
    if (mode != AcceptSave)
        return;
    mLimits = new QCheckBox(tr("Save rotation limits"), this);
    mLimits->setChecked(true);
    mLimits->setToolTip(tr("Write the joints' rotation limits into the file; without them every joint turns freely."));
    // Qt's own dialog lays itself out on a grid; the option goes below the file type row.
    if (auto* grid = qobject_cast<QGridLayout*>(layout()))
        grid->addWidget(mLimits, grid->rowCount(), 0, 1, grid->columnCount());
}

QString SkeletonFileDialog::NameFilter(Format format)
{
    switch (format)
    {
    case BinaryLittleEndian:
        return tr("Binary ZEL little endian (*%1)").arg(BinaryExtension());
    case BinaryBigEndian:
        return tr("Binary ZEL big endian (*%1)").arg(BinaryExtension());
    case Xml:
        break;
    }
    return CharacterizationXml::FileFilter();
}

QString SkeletonFileDialog::BinaryExtension()
{
    return QStringLiteral(".zelc");
}

SkeletonFileDialog::Format SkeletonFileDialog::GetFormat() const
{
    const QString filter = selectedNameFilter();
    if (filter == NameFilter(BinaryBigEndian))
        return BinaryBigEndian;
    if (filter == NameFilter(BinaryLittleEndian))
        return BinaryLittleEndian;
    if (filter == NameFilter(Xml))
        return Xml;
    // Loading under the combined filter: the file's own extension decides.
    const QStringList files = selectedFiles();
    return !files.isEmpty() && files.front().endsWith(QLatin1String(".xml"), Qt::CaseInsensitive) ? Xml
                                                                                                   : BinaryLittleEndian;
}

QString SkeletonFileDialog::GetPath() const
{
    const QStringList files = selectedFiles();
    if (files.isEmpty())
        return QString();
    QString path = files.front();
    const QString extension = GetFormat() == Xml ? QStringLiteral(".xml") : BinaryExtension();
    if (acceptMode() == AcceptSave && !path.endsWith(extension, Qt::CaseInsensitive))
        path += extension;
    return path;
}

bool SkeletonFileDialog::GetSaveRotationLimits() const
{
    return mLimits == nullptr || mLimits->isChecked();
}

void SkeletonFileDialog::accept()
{
    // The suffix must be known before Qt asks about overwriting, and the filter can change until the last moment.
    if (acceptMode() == AcceptSave)
        setDefaultSuffix(GetFormat() == Xml ? QStringLiteral("xml") : BinaryExtension().mid(1));
    QFileDialog::accept();
}
