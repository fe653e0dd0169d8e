#include "automation/object_safety.h"

#include <gtest/gtest.h>

namespace skyhold {
namespace {

using namespace Qt::Literals::StringLiterals;

TEST(ObjectSafety, optionsPerInterface) {
    const QString dispatch = u"{00020400-0000-0000-c000-000000000046}"_s;
    const QString unknown = u"{00000000-0000-0000-C000-000000000046}"_s;
    const QStringList persistence{u"{0000010A-0000-0000-C000-000000000046}"_s,
                                  u"{00000109-0000-0000-C000-000000000046}"_s,
                                  u"{37D84F60-42CB-11CE-8135-00AA004BB851}"_s};
    const ObjectSafety on{true, true};
    const ObjectSafety off;
    const auto expectEnabled = [&](const QString& id, std::uint32_t whenOn) {
        for (const ObjectSafety& safety : {on, off}) {
            const auto options = GetInterfaceSafetyOptions(safety, id).value_or(SafetyOptions{});
            EXPECT_EQ(options.supported, 3U);
            EXPECT_EQ(options.enabled, safety.forScripting ? whenOn : 0U);
        }
    };
    expectEnabled(dispatch, 1);
    for (const QString& id : persistence)
        expectEnabled(id, 2);
    EXPECT_FALSE(GetInterfaceSafetyOptions(on, unknown));

    const struct {
        QString id;
        std::uint32_t mask, enabled;
        AutomationError error;
        ObjectSafety safety = {true, true};
    } cases[] = {
        {dispatch, 1, 1, AutomationError::None},
        {dispatch, 0xFFFFFFFF, 1, AutomationError::None},
        {dispatch, 3, 3, AutomationError::Fail},
        {dispatch, 1, 0, AutomationError::Fail},
        {dispatch, 2, 2, AutomationError::Fail},
        {dispatch, 1, 1, AutomationError::Fail, off},
        {persistence[2], 2, 3, AutomationError::None},
        {persistence[0], 3, 3, AutomationError::Fail},
        {persistence[1], 2, 2, AutomationError::Fail, off},
        {unknown, 1, 1, AutomationError::NoInterface},
        {QString(), 2, 2, AutomationError::NoInterface},
    };
    for (const auto& [id, mask, options, error, safety] : cases)
        EXPECT_EQ(SetInterfaceSafetyOptions(safety, id, mask, options), error)
            << qPrintable(id) << mask << options;
}

} // namespace
} // namespace skyhold
