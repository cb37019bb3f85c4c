#pragma once

#include "hx/HxData.h"

#include <string>
#include <variant>
#include <vector>

/// A table of results: typed columns with titles, and rows.
class HxSpreadSheet : public HxData
{
    Q_OBJECT

public:
    enum class ColumnType
    {
        String,
        Int,
        Float
    };

    HxSpreadSheet();

    static void initClass();
    static HxBase* createInstance();
    static McTypeId getClassTypeId();
    McTypeId getTypeId() const override { return getClassTypeId(); }

    /// Empties the table: no columns, no rows.
    void clear();
    /// Returns the index of the new column; its cells are empty or 0.
    int addColumn(const char* title, ColumnType type);
    /// Returns the index of the new row; its cells are empty or 0.
    int addRow();

    int numColumns() const { return static_cast<int>(columns.size()); }
    int numRows() const { return rows; }
    const char* columnTitle(int column) const { return columns[column].title.c_str(); }
    ColumnType columnType(int column) const { return columns[column].type; }

    /// Writes a cell; the value is converted to the type of the column.
    void setText(int column, int row, const char* text);
    void setInt(int column, int row, long value);
    void setFloat(int column, int row, double value);

    /// Reads a cell in any form; a text that is no number reads as 0.
    McString text(int column, int row) const;
    double number(int column, int row) const;

    int parse(Tcl_Interp* interp, int wordCount, char** words) override;
    void commandHelp(McDArray<HxCommandHelp>& list) const override;

protected:
    /// Comma-separated values with a line of titles.
    bool writeFile(const char* path, McString& error) override;

private:
    using Cell = std::variant<std::string, long, double>;

    struct Column
    {
        std::string title;
        ColumnType type;
        std::vector<Cell> cells;
    };

    static Cell emptyCell(ColumnType type);

    std::vector<Column> columns;
    int rows = 0;
};
