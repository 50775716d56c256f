#pragma once
#include <QAbstractTableModel>

#include "platform/controls/Controls.h"

namespace pw {

/** Hands out the rows of a ListView when the view on the screen asks for them. */
class ListModel : public QAbstractTableModel {
    Q_OBJECT
  public:
    enum class Checkable { No, Yes };
    ListModel(ListView& list, Checkable checkable, QObject* parent);

    /** Brings the view into step with the list, keeping its place where it can. */
    void refresh();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

  private:
    ListView& list_;
    Checkable checkable_;
    int rows_ = 0;
    int columns_ = 1;
};

}  // namespace pw
