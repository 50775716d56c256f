#include "platform/qt/ListModel.h"

#include <QBrush>
#include <QGuiApplication>
#include <QPalette>

#include "platform/qt/ImageList.h"
#include "platform/qt/QtText.h"

namespace pw {

ListModel::ListModel(ListView& list, Checkable checkable, QObject* parent)
    : QAbstractTableModel(parent), list_(list), checkable_(checkable) {
    rows_ = list.Count();
    columns_ = std::max(1, int(list.Columns().size()));
}

void ListModel::refresh() {
    const int rows = list_.Count();
    const int columns = std::max(1, int(list_.Columns().size()));
    if (columns != columns_) {
        beginResetModel();
        columns_ = columns;
        rows_ = rows;
        endResetModel();
        return;
    }
    if (rows > rows_) {
        beginInsertRows({}, rows_, rows - 1);
        rows_ = rows;
        endInsertRows();
    } else if (rows < rows_) {
        beginRemoveRows({}, rows, rows_ - 1);
        rows_ = rows;
        endRemoveRows();
    }
    emit headerDataChanged(Qt::Horizontal, 0, columns_ - 1);
    if (rows_ > 0) emit dataChanged(index(0, 0), index(rows_ - 1, columns_ - 1));
}

int ListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_;
}

int ListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columns_;
}

QVariant ListModel::data(const QModelIndex& index, int role) const {
    // The list may have shrunk since the last refresh.
    if (!index.isValid() || index.row() >= list_.Count()) return {};
    const bool first = index.column() == 0;
    const bool known = role == Qt::DisplayRole || role == Qt::ToolTipRole ||
                       role == Qt::TextAlignmentRole || role == Qt::ForegroundRole ||
                       (first && (role == Qt::DecorationRole || role == Qt::CheckStateRole));
    if (!known) return {};
    const auto column = std::size_t(index.column());
    if (role == Qt::TextAlignmentRole) {
        const bool numeric = column < list_.Columns().size() && list_.Columns()[column].numeric;
        return int((numeric ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    }
    const ListRow row = list_.Row(index.row());
    switch (role) {
        case Qt::ForegroundRole:
            if (!row.dimmed) return {};
            return QGuiApplication::palette().brush(QPalette::Disabled, QPalette::Text);
        case Qt::DecorationRole:
            return row.image != 0 ? QVariant(imageIcon(row.image)) : QVariant();
        case Qt::CheckStateRole:
            if (checkable_ == Checkable::No) return {};
            return int(row.checked ? Qt::Checked : Qt::Unchecked);
        default:
            return column < row.cells.size() ? toQt(row.cells[column]) : QString();
    }
}

bool ListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (role != Qt::CheckStateRole || !index.isValid() || index.row() >= list_.Count()) {
        return false;
    }
    list_.UserCheck(index.row(), value.toInt() == Qt::Checked);
    return true;
}

QVariant ListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || std::size_t(section) >= list_.Columns().size()) return {};
    const ListColumn& column = list_.Columns()[std::size_t(section)];
    if (role == Qt::DisplayRole) return toQt(column.caption);
    if (role == Qt::TextAlignmentRole) {
        return int((column.numeric ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    }
    return {};
}

Qt::ItemFlags ListModel::flags(const QModelIndex& index) const {
    Qt::ItemFlags flags = QAbstractTableModel::flags(index) | Qt::ItemNeverHasChildren;
    if (checkable_ == Checkable::Yes && index.column() == 0) flags |= Qt::ItemIsUserCheckable;
    return flags;
}

}  // namespace pw
