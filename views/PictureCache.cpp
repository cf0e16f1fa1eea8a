#include "PictureCache.h"

#include <QFile>
#include <QGuiApplication>
#include <QtDebug>

PictureCache::PictureCache(qreal ratio) : mRatio(ratio)
{
    if (mRatio <= 0)
        mRatio = qobject_cast<QGuiApplication*>(QCoreApplication::instance()) ? qApp->devicePixelRatio() : 1.0;
}

const QPixmap& PictureCache::Get(const QString& name)
{
    auto found = mPictures.find(name);
    if (found == mPictures.end())
        found = mPictures.insert(name, Load(name));
    return found.value();
}

QPixmap PictureCache::Load(const QString& name) const
{
    const QString path = ":/" + name;
    if (mRatio > 1 && path.endsWith(".png")) {
        const QString high = path.left(path.size() - 4) + "@2x.png";
        if (QFile::exists(high)) {
            QPixmap picture(high);
            if (!picture.isNull()) {
                picture.setDevicePixelRatio(2);
                return picture;
            }
        }
    }
    QPixmap picture(path);
    if (picture.isNull())
        qWarning("PIXMAP: %s %s\n", qPrintable(path), "MISSING");
    return picture;
}
