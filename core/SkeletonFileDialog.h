#pragma once

#include <QFileDialog>

class QCheckBox;

// The file dialog for skeleton definitions: the binary stream in either byte order or the XML file, and, when
// saving, whether rotation limits go into the file. Qt's own dialog, so that it looks the same on every platform
// and can carry the extra option.
class SkeletonFileDialog : public QFileDialog
{
    Q_OBJECT

public:
    enum Format
    {
        BinaryLittleEndian = 0,
        BinaryBigEndian = 1,
        Xml = 2
    };

    SkeletonFileDialog(QWidget* parent, AcceptMode mode, const QString& directory);

    static QString NameFilter(Format format);
    static QString BinaryExtension(); // ".zelc"

    Format GetFormat() const;
    // The chosen file, with the format's extension added when the user typed none.
    QString GetPath() const;
    bool GetSaveRotationLimits() const;
    QCheckBox* GetRotationLimitsBox() const { return mLimits; }

public slots:
    void accept() override;

private:
    QCheckBox* mLimits = nullptr;
};
