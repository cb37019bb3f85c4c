#include "hx/HxSpreadSheet.h"

#include "hx/HxNumberText.h"
#include "hx/HxSafeFile.h"

#include <climits>
#include <cmath>

namespace {

double numberFrom(const std::string& text)
{
    double number = 0;
    hxReadNumber(text, number);
    return number;
}

long roundedToLong(double value)
{
    constexpr double kLimit = 9.2e18;
    return std::abs(value) < kLimit ? std::lround(value) : (value > 0 ? LONG_MAX : value < 0 ? LONG_MIN : 0);
}

/// A cell of comma-separated text, quoted where a comma, a quote or a line end would be misread.
std::string quoted(const std::string& text)
{
    if (text.find_first_of(",\"\r\n") == text.npos) return text;
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"') result += '"';
        result += c;
    }
    return result + '"';
}

int runCell(HxSpreadSheet& sheet, const HxScriptCall& call)
{
    long column, row;
    if (!call.getIndex(2, sheet.numColumns(), "column", column) ||
        !call.getIndex(3, sheet.numRows(), "row", row))
        return TCL_ERROR;
    return call.result(sheet.text(static_cast<int>(column), static_cast<int>(row)));
}

int runColumns(HxSpreadSheet& sheet, const HxScriptCall& call)
{
    McDArray<McString> titles;
    for (int i = 0; i < sheet.numColumns(); i++) titles.append(McString(sheet.columnTitle(i)));
    return call.result(titles);
}

const HxCommand<HxSpreadSheet> kCommands[] = {
    {"columns", "columns", "Lists the titles of the columns.", 0, 0, runColumns},
    {"rows", "rows", "Gives the number of rows.", 0, 0,
     [](HxSpreadSheet& sheet, const HxScriptCall& call) {
         return call.result(static_cast<long>(sheet.numRows()));
     }},
    {"cell", "cell COLUMN ROW", "Gives the content of a cell, counted from 0.", 2, 2, runCell},
};

} // namespace

HxSpreadSheet::HxSpreadSheet() = default;

void HxSpreadSheet::initClass()
{
    getClassTypeId();
}

HxBase* HxSpreadSheet::createInstance()
{
    return new HxSpreadSheet;
}

McTypeId HxSpreadSheet::getClassTypeId()
{
    return hxClassType<HxSpreadSheet, HxData>("HxSpreadSheet");
}

void HxSpreadSheet::clear()
{
    columns.clear();
    rows = 0;
}

HxSpreadSheet::Cell HxSpreadSheet::emptyCell(ColumnType type)
{
    switch (type) {
    case ColumnType::Int:
        return 0L;
    case ColumnType::Float:
        return 0.0;
    default:
        return std::string();
    }
}

int HxSpreadSheet::addColumn(const char* title, ColumnType type)
{
    columns.push_back({title ? title : "", type, std::vector<Cell>(rows, emptyCell(type))});
    return numColumns() - 1;
}

int HxSpreadSheet::addRow()
{
    for (Column& column : columns) column.cells.push_back(emptyCell(column.type));
    return rows++;
}

void HxSpreadSheet::setText(int column, int row, const char* content)
{
    const std::string given(content ? content : "");
    switch (columns[column].type) {
    case ColumnType::Int:
        setFloat(column, row, numberFrom(given));
        break;
    case ColumnType::Float:
        setFloat(column, row, numberFrom(given));
        break;
    case ColumnType::String:
        columns[column].cells[row] = given;
        break;
    }
}

void HxSpreadSheet::setInt(int column, int row, long value)
{
    Cell& cell = columns[column].cells[row];
    switch (columns[column].type) {
    case ColumnType::Int:
        cell = value;
        break;
    case ColumnType::Float:
        cell = static_cast<double>(value);
        break;
    case ColumnType::String:
        cell = hxNumberText(value);
        break;
    }
}

void HxSpreadSheet::setFloat(int column, int row, double value)
{
    Cell& cell = columns[column].cells[row];
    switch (columns[column].type) {
    case ColumnType::Int:
        cell = roundedToLong(value);
        break;
    case ColumnType::Float:
        cell = value;
        break;
    case ColumnType::String:
        cell = hxNumberText(value);
        break;
    }
}

McString HxSpreadSheet::text(int column, int row) const
{
    const Cell& cell = columns[column].cells[row];
    if (const auto* content = std::get_if<std::string>(&cell)) return *content;
    if (const auto* whole = std::get_if<long>(&cell)) return hxNumberText(*whole);
    return hxNumberText(std::get<double>(cell));
}

double HxSpreadSheet::number(int column, int row) const
{
    const Cell& cell = columns[column].cells[row];
    if (const auto* content = std::get_if<std::string>(&cell)) return numberFrom(*content);
    if (const auto* whole = std::get_if<long>(&cell)) return static_cast<double>(*whole);
    return std::get<double>(cell);
}

bool HxSpreadSheet::writeFile(const char* path, McString& error)
{
    std::string content;
    const auto append = [&](int column, const std::string& cell) {
        content += quoted(cell);
        content += column + 1 < numColumns() ? ',' : '\n';
    };
    for (int i = 0; i < numColumns(); i++) append(i, columns[i].title);
    for (int row = 0; row < rows; row++)
        for (int i = 0; i < numColumns(); i++) append(i, text(i, row).str());
    return hxWriteFileSafely(path, content, error);
}

int HxSpreadSheet::parse(Tcl_Interp* interp, int wordCount, char** words)
{
    int code;
    if (hxRunCommand(kCommands, *this, HxScriptCall(interp, wordCount, words), code)) return code;
    return HxData::parse(interp, wordCount, words);
}

void HxSpreadSheet::commandHelp(McDArray<HxCommandHelp>& list) const
{
    HxData::commandHelp(list);
    hxAppendHelp(kCommands, list);
}
