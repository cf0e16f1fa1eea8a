#include "BvhRotationOrders.h"

#include <algorithm>
#include <cctype>
#include <fstream>

namespace bvh
{
std::map<std::string, ZELRotationOrder> RotationOrders(const std::string& path)
{
    std::map<std::string, ZELRotationOrder> orders;
    std::ifstream in(path);
    std::string joint;
    std::string token;
    while (in >> token)
    {
        if (token == "MOTION")
            break;
        if (token == "ROOT" || token == "JOINT")
            in >> joint;
        else if (token == "End")
            joint.clear();
        else if (token == "CHANNELS")
        {
            int count = 0;
            in >> count;
            std::string listed;
            for (int i = 0; i < count && in >> token; ++i)
            {
                std::string lower = token;
                std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
                if (lower.size() > 8 && lower.compare(lower.size() - 8, 8, "rotation") == 0)
                    listed.push_back(char(std::toupper(static_cast<unsigned char>(token[0]))));
            }
            ZELRotationOrder order;
            if (!joint.empty() && FromChannels(listed, order))
                orders[joint] = order;
        }
    }
    return orders;
}

bool FromChannels(const std::string& listed, ZELRotationOrder& order)
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
    const std::string applied(listed.rbegin(), listed.rend());
    for (const Named& named : kOrders)
    {
        if (applied == named.axes)
        {
            order = named.order;
            return true;
        }
    }
    return false;
}
} // namespace bvh
