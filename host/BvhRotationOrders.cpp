#include "BvhRotationOrders.h"

#include <algorithm>

#include <QFile>
#include <QTextStream>

QHash<QString, ZELRotationOrder> BvhRotationOrders::Read(const QString& path)
{
    QHash<QString, ZELRotationOrder> orders;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return orders;
    QTextStream in(&file);
    QString joint;
    QString token;
    while (!in.atEnd() && in.status() == QTextStream::Ok)
    {
        in >> token;
        if (token == QLatin1String("MOTION"))
            break;
        if (token == QLatin1String("ROOT") || token == QLatin1String("JOINT"))
            in >> joint;
        else if (token == QLatin1String("End"))
            joint.clear();
        else if (token == QLatin1String("CHANNELS"))
        {
            in >> token;
            const int count = token.toInt();
            QString listed;
            for (int i = 0; i < count && !in.atEnd(); ++i)
            {
                in >> token;
                if (token.endsWith(QLatin1String("rotation"), Qt::CaseInsensitive))
                    listed.append(token.left(1).toUpper());
            }
            ZELRotationOrder order;
            if (!joint.isEmpty() && FromChannels(listed, order))
                orders.insert(joint, order);
        }
    }
    return orders;
}

bool BvhRotationOrders::FromChannels(const QString& listed, ZELRotationOrder& order)
{
    struct Named
    {
        const char* axes;
        ZELRotationOrder order;
    };
    static const Named kOrders[] = {{"XYZ", ZELEulerXYZ}, {"XZY", ZELEulerXZY}, {"YZX", ZELEulerYZX},
                                    {"YXZ", ZELEulerYXZ}, {"ZXY", ZELEulerZXY}, {"ZYX", ZELEulerZYX}};
    // The file lists the outermost rotation first ("Zrotation Xrotation Yrotation" is Rz * Rx * Ry); our orders
    // name the axis applied first, so the letters run backwards.
    QString applied = listed;
    std::reverse(applied.begin(), applied.end());
    for (const Named& named : kOrders)
    {
        if (applied == QLatin1String(named.axes))
        {
            order = named.order;
            return true;
        }
    }
    return false;
}
