#pragma once

#include "core/GiSelection2D.h"
#include "mc/McBox.h"
#include "mc/McDArray.h"
#include "mc/McHandle.h"
#include "mc/McVec.h"

class Gi;
class GiCrossHairTool;
class GiShape;
class GiViewer;
class McEvent;
class QCursor;

/// The picture of one slice, drawn by software into memory. It knows no window system; a subclass
/// brings the memory to the screen in `paste`.
///
/// Three coordinate systems:
///
///     data     a pixel of the slice, 0 to originalSize - 1
///     zoomed   a pixel of the whole enlarged slice, 0 to zoomedSize - 1
///     memory   a pixel of the memory image: zoomed minus `offset`, 0 to memSize - 1
///
/// A data pixel is a block of zoomed pixels whose width is given per column and whose height per row, so
/// that stacks of equal and of unequal slice distances are shown by the same code. Shapes, tools and all
/// drawing operations work in zoomed coordinates. A flip mirrors the memory image only: zoomed
/// coordinates and tables stay as they are.
///
/// The shapes stand in drawing order, one reference each; the lowest `selectionLayers` of them are drawn
/// with the colour of the selection blended in.
class GiFrameBuffer
{
public:
    /// How a pixel lies in memory, from the highest byte down. The first four have 4 bytes.
    enum PixelType
    {
        kXBGR = 0,
        kXRGB = 1,
        kBGRX = 2,
        kRGBX = 3,
        kRGB16 = 4 // 2 bytes: 5 bits red, 6 green, 5 blue
    };

    enum Function
    {
        kDraw = 0,
        kInvert = 1, // all bits of the pixel in memory
        kXor = 2,    // lower 24 bits of (pixel xor current colour)
        kBlend = 3   // current colour, under a selected data pixel blended with the selection's
    };

    /// Returns non-zero if it has consumed the event.
    using EventHandler = int (*)(GiFrameBuffer*, McEvent*, void* data);

    /// Without memory yet, with pixels of type kXRGB.
    GiFrameBuffer();
    /// With memory, all bytes 128. A type other than kXBGR, kRGBX and kRGB16 ends the process.
    GiFrameBuffer(const McVec2i& zoomed, const McVec2i& mem, PixelType type);
    virtual ~GiFrameBuffer();
    GiFrameBuffer(const GiFrameBuffer&) = delete;
    GiFrameBuffer& operator=(const GiFrameBuffer&) = delete;

    /// Sets up another slice and keeps the view on the same place: with the same zoomed size the offset
    /// stays, otherwise the data pixel in the middle of the memory image does.
    /// replicX, replicY  one number of zoomed pixels per column and row; null keeps the zoomed size of
    ///                   that axis and spreads it evenly
    virtual void resize(const McVec2i& size, const int* columns, const int* rows);
    /// New memory if the size differs; its contents are undefined. throws McMemoryException
    virtual void setMemSize(const McVec2i& size);
    /// Only stores; prepareCoordLookups2() brings the tables along.
    virtual void setOffset(const McVec2i& p) { offset = p; }
    /// Draws all shapes but one over the whole window.
    virtual void render(GiShape* except);
    /// The same inside a box, in zoomed coordinates; the clip box is the common part afterwards.
    virtual void render(const McBox2i& box, GiShape* except);
    /// Brings the memory to the screen.
    virtual void paste() {}
    virtual void paste(const McBox2i&) {}
    virtual void setFlip(int x, int y);
    /// Turns by quarters of a circle; only whether the sum is a full turn is kept.
    virtual void setRotate(int from, int to);
    virtual void setCursor(const QCursor&) {}
    /// Size of the window that shows the buffer; the memory image can be smaller.
    virtual McVec2i windowSize() const { return memSize; }

    void setGi(Gi* owner) { gi = owner; }
    /// Everything but sizes, tables, memory, shapes and owners back to its default.
    void defaultValues();
    void setColor(int r, int g, int b);
    void setLineWidth(int width) { lineWidth = width; }
    void setFunction(Function f) { function = f; }
    /// Move the memory image by columns or rows, towards higher coordinates for positive numbers. What
    /// becomes free keeps its old contents. 4-byte pixels only.
    void scrollHorizontal(int columns);
    void scrollVertical(int rows);
    /// Which scroll bars are wanted, and their own buffers, which may be null.
    void setScrollBars(int horizontal, int vertical, GiFrameBuffer* barH, GiFrameBuffer* barV);

    /// Returns the index of the shape.
    int addShape(GiShape* shape);
    /// 0 if the shape was there, else 1.
    int removeShape(GiShape* shape);
    bool hasShape(const GiShape* shape) const;
    void addEventHandler(EventHandler handler, void* data);
    /// Removes the first equal handler.
    void removeEventHandler(EventHandler handler);
    /// Offers an event to the handlers, then to pan tool, dragging shapes, cross hair and at last to every
    /// shape; 1 if one of the first or the active tool took it.
    int handleEvent(McEvent* event);

    /// All bytes of the memory become 128.
    void clear();
    /// Zoomed coordinate of a position inside the data pixels, and back. Limited to the slice and to the
    /// window.
    McVec2i zoomf(const McVec2f& p) const;
    McVec2f unzoomf(const McVec2i& p) const;

    // The tables with the rule for indices outside: below 0 the first entry, beyond the end the last data
    // pixel, the last zoomed pixel or a size of 0.
    int dataColumn(int x) const { return entry(originalCoordsX, x - offset.x); }
    int dataRow(int y) const { return entry(originalCoordsY, y - offset.y); }
    int columnStart(int i) const { return start(zoomedCoordsX, i, zoomedSize.x); }
    int rowStart(int j) const { return start(zoomedCoordsY, j, zoomedSize.y); }
    int columnWidth(int i) const { return extent(replicX, i); }
    int rowHeight(int j) const { return extent(replicY, j); }
    /// Zoomed coordinates of the middle of a data pixel's block.
    McVec2i pixelCentre(int i, int j) const
    {
        return McVec2i(columnStart(i) + columnWidth(i) / 2, rowStart(j) + rowHeight(j) / 2);
    }
    /// Zoomed coordinates of a box of data pixels, by the same rule.
    McBox2i screenBox(const McBox2i& dataBox) const;

    /// The box cut to the window.
    void setClipBox(const McBox2i& box) { clipBox = box.intersected(window()); }
    void unsetClipBox() { clipBox = window(); }
    /// The memory image in zoomed coordinates.
    McBox2i window() const
    {
        return McBox2i(offset.x, offset.y, offset.x + memSize.x - 1, offset.y + memSize.y - 1);
    }

    // Drawing, all clipped to the clip box. Single pixels, lines and what is made of them exist for 4-byte
    // pixels only.

    void writePixel(int x, int y);
    /// writePixel() on every step-th pixel from x0 to x1, or from y0 to y1.
    void writeRow(int x0, int x1, int y, int step = 1);
    void writeColumn(int x, int y0, int y1);
    void drawLine(int x0, int y0, int x1, int y1);
    void drawRect(const McVec2i& center, const McVec2i& half);
    /// Outline in dashes of `pixel` and the current colour.
    /// percent  length of a dash, of the length of its side
    void drawStippleRect(const McVec2i& center, const McVec2i& half, float percent, unsigned int pixel);
    void drawEllipse(int cx, int cy, float rx, float ry);
    /// degrees  length of a dash
    void drawStippleEllipse(int cx, int cy, float rx, float ry, float degrees, unsigned int pixel);
    /// Corners in zoomed coordinates, both included. In a flipped buffer they count from the far end of the
    /// window, unlike those of all other drawing.
    void fillRect(int x0, int y0, int x1, int y1);
    /// Draws a slice given as one pixel in memory format per data pixel, rows bytesPerRow bytes apart. The
    /// selection is blended in only while no outline shows it.
    void putImageGrey8Zoomed(const unsigned int* image, unsigned long width, unsigned long height,
                             unsigned long bytesPerRow);

    /// The selection under the lowest shapes; may be null.
    void setSelection(GiSelection2D* newSelection, int layers);
    bool isBrowsing() const { return browsing; }
    void setBrowsing(bool on) { browsing = on; }

    /// Data to zoomed coordinates: the start of each column and row, from `replicX` and `replicY`.
    void prepareCoordLookups1();
    /// Memory to data coordinates, for the present offset and memory size.
    void prepareCoordLookups2();

    int selectionAlpha; // weight of the selection's colour; a blend limits it to 0 to 255
    GiViewer* viewer = nullptr;
    GiFrameBuffer* scrollBarH = nullptr;
    GiFrameBuffer* scrollBarV = nullptr;
    unsigned char flags; // kWantsScrollBarH and so on
    bool flipX, flipY;
    bool rotated;
    bool swapAxes; // exchanges x and y of writePixel and fillRect
    McDArray<GiShape*> shapes;
    McDArray<int> originalCoordsX, originalCoordsY; // memory to data
    McDArray<int> subPixelX, subPixelY;             // memory: index within the block
    McDArray<int> replicX, replicY;                 // data: size of the block
    McDArray<int> zoomedCoordsX, zoomedCoordsY;     // data to zoomed: first pixel of the block
    McVec2i originalSize, zoomedSize, memSize, offset;
    int bytesPerPixel = 4;
    unsigned long bytesPerRow = 0;
    PixelType pixelType = kXRGB;
    /// malloc'ed. A subclass that lends memory of its own sets it to null before it is destroyed.
    unsigned char* memory = nullptr;
    McBox2i clipBox; // in zoomed coordinates
    int selectionLayers;
    McHandle<GiSelection2D> selection;
    Gi* gi = nullptr;
    unsigned int selectionPixel = 0, secondPixel = 0; // selection colour and pure blue
    int selectionRed, selectionGreen, selectionBlue;
    unsigned int currentPixel;
    int red = 0, green = 0, blue = 0; // as given to setColor
    int lineWidth;
    Function function;
    McDArray<void*> handlerData; // parallel to `handlers`
    McDArray<EventHandler> handlers;
    bool browsing; // the user leafs through the slices

    static constexpr unsigned char kWantsScrollBarH = 1;
    static constexpr unsigned char kWantsScrollBarV = 2;
    static constexpr unsigned char kRenderingOff = 4;

protected:
    void setPixelType(PixelType type);

private:
    static int entry(const McDArray<int>& table, int i)
    {
        if (table.isEmpty()) return 0;
        return table[i < 0 ? 0 : i < table.size() ? i : table.size() - 1];
    }
    static int start(const McDArray<int>& table, int i, int total)
    {
        if (table.isEmpty() || i >= table.size()) return total > 0 ? total - 1 : 0;
        return table[i < 0 ? 0 : i];
    }
    static int extent(const McDArray<int>& table, int i) { return i >= 0 && i < table.size() ? table[i] : 0; }

    unsigned int pack(int r, int g, int b) const;
    unsigned int blended(unsigned int pixel) const;
    bool isSelected(int column, int row) const;
    unsigned int* pixelAt(int memX, int memY) const
    {
        return reinterpret_cast<unsigned int*>(memory + static_cast<unsigned long>(memY) * bytesPerRow) +
               memX;
    }
    /// writePixel() on a place inside the clip box.
    void writeInside(int x, int y);
    void plotLinePoint(int x, int y);
    McBox2i reachOfLines() const;
    void fill2(const McBox2i& mem);
    void fill4(const McBox2i& mem);
    void drawDashedSide(McVec2i from, McVec2i to, float dash, unsigned int colors[2]);

    Function blitFunction() const;

    /// Takes a visible brush outline away before pan tool or cross hair act.
    void clearToolMarks();
    int offerToDraggingShapes(McEvent* event, GiCrossHairTool*& crossHair);
};
