#pragma once

#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace orvane::test {

/// A row of a table: its cells by the titles of their columns.
using Row = std::map<std::string, std::string>;

/// Returns the rows of the tables in docs/errors.md whose first column has that title.
inline std::vector<Row> rowsOfTheErrorsPage(const std::string& firstTitle) {
  std::vector<Row> rows;
  std::vector<std::string> titles;
  std::ifstream page(ERRORS_PAGE);
  for (std::string line; std::getline(page, line);) {
    if (!line.starts_with("|")) titles.clear();
    if (!line.starts_with("| ")) continue;
    std::vector<std::string> cells;
    std::istringstream rest(line);
    for (std::string cell; std::getline(rest, cell, '|');)
      if (cell.size() > 2) cells.push_back(cell.substr(1, cell.size() - 2));
    if (titles.empty()) {
      titles = std::move(cells);
    } else if (titles.front() == firstTitle) {
      Row& row = rows.emplace_back();
      for (std::size_t i = 0; i < cells.size(); ++i) row.emplace(titles.at(i), cells[i]);
    }
  }
  return rows;
}

}  // namespace orvane::test
