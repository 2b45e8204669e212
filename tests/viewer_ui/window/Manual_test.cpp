// The manual says the keys that the window has.
#include <gmock/gmock.h>

#include <QFile>

#include "window/Commands.h"

namespace {

TEST(Manual, ListsEveryKey) {
    QFile file(QStringLiteral(MANUAL));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const std::string manual = file.readAll().toStdString();
    for (const auto& row : veloxa::viewer::command_table()) {
        const QString keys = QString::fromLatin1(row.keys).replace(';', QStringLiteral("` or `"));
        if (keys.isEmpty()) continue;
        const QString text = QString::fromUtf8(row.text).remove('&').remove(QStringLiteral("…"));
        EXPECT_THAT(manual,
                    testing::HasSubstr(QStringLiteral("| `%1` | %2 |").arg(keys, text).toStdString()));
    }
    for (const auto& row : veloxa::viewer::gesture_table()) {
        const QString line =
            QStringLiteral("| %1 | %2 |").arg(QLatin1String(row.keys), QLatin1String(row.what));
        EXPECT_THAT(manual, testing::HasSubstr(line.toStdString()));
    }
}

}  // namespace
