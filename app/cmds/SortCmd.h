#pragma once
// The sort family (35350, "Sort Images"): orders the whole list by name.
// The key and the direction are the shape list's sort state, kept in its
// settings section: [CImageListView] m_SortKey (1 = by name, anything else
// leaves the order as it is) and m_SortAscending (0 = descending, which
// reverses the order). Names compare byte by byte as unsigned bytes up to
// the end of the shorter one; images that compare equal keep their order.
// Sorting cannot be undone.

#include "app/doc/Command.h"

#include <string>
#include <vector>

class CSortCmd : public CCommand {
  public:
    CSortCmd();
    void Do() override;
};

class CSortInfo : public CCommandInfo {
  public:
    CSortInfo();
    std::vector<std::string> GetSettingKeys() const override;
};

// The order of `names` (indices) under the sort state.
std::vector<int> SortedOrder(const std::vector<std::string>& names, int key, bool ascending);
