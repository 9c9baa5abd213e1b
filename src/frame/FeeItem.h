#pragma once

#include <QString>
#include <vector>

#include "core/ValueRules.h"

namespace yunqi {

// One fee item of a statement. ItemCode carries its own single quotes, ready
// for an "in (...)" list; ItemName has the characters removed that a bare SQL
// alias can't hold.
struct FeeItem {
    quint32 SpareFeeNumber = 0;
    QString ItemCode;
    QString ItemName;
    double TaxRate = 0;
    QString Category;
    QString SpareFeeText;
    QString TaxAlias;

    bool IsParking() const { return ValueRules::IsParkingCategory(Category); }
    // Money columns of the item: 开发商, 物业 and tax for parking, else amount and tax.
    int ColumnCount() const { return IsParking() ? 3 : 2; }
};

// The window's array of items: index 0 exists and is never read.
using FeeItemList = std::vector<FeeItem>;

inline int FeeColumnCountOf(const FeeItemList& items) {
    int n = 0;
    for (std::size_t i = 1; i < items.size(); ++i) n += items[i].ColumnCount();
    return n;
}

}  // namespace yunqi
