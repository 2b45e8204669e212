#include "window/KeysDialog.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QTableWidget>
#include <QVBoxLayout>

#include "window/Commands.h"

namespace veloxa::viewer {

namespace {

void add_row(QTableWidget& table, const QString& keys, const QString& what) {
    const int row = table.rowCount();
    table.insertRow(row);
    table.setItem(row, 0, new QTableWidgetItem(keys));
    table.setItem(row, 1, new QTableWidgetItem(what));
}

}  // namespace

void show_keys(QWidget& parent) {
    auto* const dialog = new QDialog(&parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(QStringLiteral("Keys"));
    dialog->setObjectName(QStringLiteral("keys_dialog"));
    auto* const table = new QTableWidget(0, 2, dialog);
    table->setAccessibleName(QStringLiteral("Keys and what they do"));
    table->setHorizontalHeaderLabels({QStringLiteral("Keys"), QStringLiteral("What they do")});
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->verticalHeader()->hide();
    for (const CommandRow& row : command_table()) {
        if (*row.keys == '\0') continue;
        const QString keys = QString::fromLatin1(row.keys).replace(';', QStringLiteral(" or "));
        QString what = QString::fromUtf8(row.text).remove('&');
        if (*row.tip != '\0') what += QStringLiteral(": ") + QString::fromUtf8(row.tip);
        add_row(*table, keys, what);
    }
    for (const GestureRow& row : gesture_table())
        add_row(*table, QString::fromUtf8(row.keys), QString::fromUtf8(row.what));
    table->resizeColumnsToContents();
    table->horizontalHeader()->setStretchLastSection(true);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close, dialog);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::close);
    auto* const layout = new QVBoxLayout(dialog);
    layout->addWidget(table);
    layout->addWidget(buttons);
    dialog->resize(720, 640);
    dialog->show();
}

}  // namespace veloxa::viewer
