#pragma once

#include <QHash>
#include <QPixmap>
#include <QString>

#include <zelkin/CharacterizationExport.h>

// The figure's compiled-in pictures, each loaded once. Names are resource paths without the leading ":/".
class ZELKIN_CHARACTERIZATION_EXPORT PictureCache
{
public:
    // ratio 0: the application's device pixel ratio; above 1 the @2x pictures are taken where they exist.
    explicit PictureCache(qreal ratio = 0);

    // A missing picture is reported once and stays a null picture.
    const QPixmap& Get(const QString& name);
    bool Contains(const QString& name) const { return mPictures.contains(name); }
    int Count() const { return mPictures.size(); }

private:
    QPixmap Load(const QString& name) const;

    QHash<QString, QPixmap> mPictures;
    qreal mRatio;
};
