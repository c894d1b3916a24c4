#include "tools/tableDrawing.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace vokTable {
namespace {

constexpr std::size_t widestColumn = 40;
constexpr std::string_view gap = "  ";

struct column {
  std::size_t width = 0;
  bool hasNumbers = false;
  bool hasText = false;

  bool isNumeric() const { return hasNumbers && !hasText; }
};

std::string shown(const std::wstring& value) {
  std::wstring text;
  appendShown(text, value, destination::terminal);
  return toUtf8(text);
}

void measure(const tableRow& row, std::vector<column>& columns) {
  if (columns.size() < row.size()) columns.resize(row.size());
  for (std::size_t i = 0; i < row.size(); ++i) {
    const std::size_t width = displayWidth(shown(row[i]));
    columns[i].width = std::max(columns[i].width, std::min(width, widestColumn));
  }
}

void classify(const tableRow& row, std::vector<column>& columns) {
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (row[i].empty()) continue;
    (looksNumeric(row[i]) ? columns[i].hasNumbers : columns[i].hasText) = true;
  }
}

std::wstring alignedLine(const tableRow& row, const std::vector<column>& columns) {
  std::string line;
  const auto out = std::back_inserter(line);
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (i > 0) line += gap;
    const std::string value = shown(row[i]);
    if (columns[i].isNumeric()) {
      fmt::format_to(out, "{:>{}}", value, columns[i].width);
    } else if (i + 1 < row.size()) {
      fmt::format_to(out, "{:<{}}", value, columns[i].width);
    } else {
      line += value;  // blanks at the end of a line help nobody
    }
  }
  line.erase(line.find_last_not_of(' ') + 1);
  return toWide(line);
}

std::wstring rule(const std::vector<column>& columns) {
  std::string line;
  for (const column& each : columns) {
    if (!line.empty()) line += gap;
    line.append(std::max<std::size_t>(each.width, 1), '-');
  }
  return toWide(line);
}

void drawAligned(const drawnTable& table, dataOutput& output) {
  std::vector<column> columns;
  measure(table.header, columns);
  table.visitRows([&](const tableRow& row) {
    measure(row, columns);
    classify(row, columns);
    return true;
  });
  if (!table.header.empty()) {
    output.line(alignedLine(table.header, columns));
    output.line(rule(columns));
  }
  table.visitRows([&](const tableRow& row) {
    // A source that changed since it was measured may have grown wider rows.
    if (columns.size() < row.size()) columns.resize(row.size());
    output.line(alignedLine(row, columns));
    return output.isOpen();
  });
}

void drawTabbed(const drawnTable& table, dataOutput& output) {
  std::wstring line;
  const auto draw = [&](const tableRow& row) {
    line.clear();
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (i > 0) line += L'\t';
      appendShown(line, row[i], destination::pipe);
    }
    output.line(line);
    return output.isOpen();
  };
  if (!table.header.empty()) draw(table.header);
  table.visitRows(draw);
}

}  // namespace

void drawTable(const drawnTable& table, dataOutput& output) {
  if (output.where() == destination::terminal) {
    drawAligned(table, output);
  } else {
    drawTabbed(table, output);
  }
}

}  // namespace vokTable
