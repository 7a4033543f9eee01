#pragma once

#include <QFont>
#include <QImage>
#include <QLineF>
#include <QPainter>
#include <QSize>
#include <QString>
#include <QWidget>

#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace trv5::platform {

// The picture box the self-drawn charts draw on. Drawing goes into a retained raster in device
// pixels that paintEvent shows, so the picture survives repaints and can be read back: Point()
// returns exactly the colour a shape was drawn in, which the charts' tooltips use to hit-test.
//
// Positions are in the user scale (ScaleLeft/Top/Width/Height, a negative height making y grow
// upward). In the pixel scale mode one unit is one widget pixel (a logical pixel on HiDPI
// screens). Shapes are drawn without anti-aliasing, snapped to whole device pixels, so a
// position always lands in the same pixel whether it is drawn or read.
//
// Drawing calls share one painter that stays open until something needs the finished raster
// (paint, resize, Raster()); drawing many lines per frame therefore costs no painter set-up.
//
// Degenerate input never fails: a non-finite coordinate, a zero or non-finite scale extent or
// an empty widget makes a drawing call draw nothing and a read-back return -1.
class DrawingSurface : public QWidget {
    Q_OBJECT

public:
    // The values are the host's classic codes for these settings.
    enum class ScaleMode : int { User = 0, Pixel = 3 };
    enum class FillStyle : int { Solid = 0, Transparent = 1 };
    enum class DrawStyle : int {
        Solid = 0,
        Dash = 1,
        Dot = 2,
        DashDot = 3,
        DashDotDot = 4,
        Invisible = 5,
    };

    explicit DrawingSurface(QWidget* pParent = nullptr);
    ~DrawingSurface() override;
    DrawingSurface(const DrawingSurface&) = delete;
    DrawingSurface& operator=(const DrawingSurface&) = delete;

    // ---- coordinate system ----
    // Setting any part of the user scale switches to the user mode; in the pixel mode the scale
    // is (0, 0, width, height) in widget pixels and follows resizes, a user scale is kept.
    void SetScale(double pLeft, double pTop, double pWidth, double pHeight);
    double ScaleLeft() const;
    double ScaleTop() const;
    double ScaleWidth() const;
    double ScaleHeight() const;
    void SetScaleLeft(double pValue);
    void SetScaleTop(double pValue);
    void SetScaleWidth(double pValue);
    void SetScaleHeight(double pValue);
    ScaleMode GetScaleMode() const { return m_scaleMode; }
    void SetScaleMode(ScaleMode pMode);

    // Lengths between the user scale and widget pixels, signed (a negative scale height gives
    // negative vertical lengths). NaN when the scale cannot map (zero extent, empty widget).
    double ScaleX(double pWidth, ScaleMode pFrom, ScaleMode pTo) const;
    double ScaleY(double pHeight, ScaleMode pFrom, ScaleMode pTo) const;
    // Positions between the user scale and widget pixels (mouse coordinates); NaN likewise.
    double ToPixelX(double pUserX) const;
    double ToPixelY(double pUserY) const;
    double ToUserX(double pPixelX) const;
    double ToUserY(double pPixelY) const;

    // The user-to-device mapping every drawing call uses: a position's device pixel cell is
    // (floor(X(x)), floor(Y(y))). Callers that reduce many positions to pixel cells themselves
    // use it so that their cells are exactly the ones the drawing calls would choose.
    struct DeviceMapping {
        double left;
        double top;
        double xFactor;
        double yFactor;
        double X(double pUserX) const { return (pUserX - left) * xFactor; }
        double Y(double pUserY) const { return (pUserY - top) * yFactor; }
    };
    // nullopt when the scale cannot map (zero or non-finite extent, no raster).
    std::optional<DeviceMapping> Mapping() const;

    double CurrentX() const { return m_currentX; }
    double CurrentY() const { return m_currentY; }
    void SetCurrentX(double pValue) { m_currentX = pValue; }
    void SetCurrentY(double pValue) { m_currentY = pValue; }

    // ---- colours (0x00BBGGRR or a system colour code) and styles ----
    std::int32_t ForeColor() const { return m_foreColor; }
    void SetForeColor(std::int32_t pColour);
    std::int32_t BackColor() const { return m_backColor; }
    // Takes effect at the next Cls (and when the raster is reallocated).
    void SetBackColor(std::int32_t pColour) { m_backColor = pColour; }
    std::int32_t FillColor() const { return m_fillColor; }
    void SetFillColor(std::int32_t pColour);
    FillStyle GetFillStyle() const { return m_fillStyle; }
    void SetFillStyle(FillStyle pStyle);
    DrawStyle GetDrawStyle() const { return m_drawStyle; }
    void SetDrawStyle(DrawStyle pStyle);
    // Line width in widget pixels; values below 1 count as 1.
    int DrawWidth() const { return m_drawWidth; }
    // The line width in device pixels, as lines are drawn.
    int DevicePenWidth() const { return PenWidthInDevicePixels(); }
    void SetDrawWidth(int pWidth);

    // ---- drawing ----
    // Clears the picture to BackColor and moves the current position to (0, 0).
    void Cls();
    // A line in ForeColor, both end points included; the current position becomes (x2, y2).
    void Line(double pX1, double pY1, double pX2, double pY2);
    // A line from the current position.
    void LineTo(double pX, double pY);
    // A line between two device pixel cells (whole device coordinates, as Mapping() and floor
    // give them), in ForeColor and DrawStyle.
    struct CellLine {
        double x1;
        double y1;
        double x2;
        double y2;
    };
    // Draws each line exactly as Line() draws a line between positions in those cells, with one
    // painter set-up for the whole batch: for charts that reduce a million points to a few
    // thousand lines per frame. The current position is left alone.
    void CellLines(std::span<const CellLine> pLines);
    // The outline of the box with corners (x1, y1) and (x2, y2), in ForeColor and DrawStyle.
    void Box(double pX1, double pY1, double pX2, double pY2);
    // The box filled with one colour, covering the pixels between the two corners (at least one
    // pixel in each direction, so a box of zero height still shows as a line).
    void FilledBox(double pX1, double pY1, double pX2, double pY2, std::int32_t pColour);
    // The outline of a rectangle with rounded corners in ForeColor and DrawStyle, covering the
    // pixels from (x1, y1) up to but not including (x2, y2), as a device-context RoundRect does.
    // The corner ellipse is pCornerWidth horizontal by pCornerHeight vertical user units (pixels
    // in the pixel mode), limited to the rectangle; the inside is left as it is.
    void RoundRect(double pX1, double pY1, double pX2, double pY2, double pCornerWidth,
                   double pCornerHeight);
    // A circle with its radius in horizontal user units, outlined in ForeColor and filled with
    // FillColor when FillStyle is solid. It stays round in pixels whatever the two scales.
    void Circle(double pCenterX, double pCenterY, double pRadius);
    // One point of DrawWidth pixels; the current position becomes (x, y).
    void PSet(double pX, double pY, std::int32_t pColour);
    // The colour drawn at a user position as 0x00BBGGRR, or -1 outside the picture.
    std::int32_t Point(double pX, double pY) const;

    // ---- whole device rows ----
    // For charts that work out every device pixel themselves (a grid of a million blocks), so
    // that their cost follows the pixels, not the shapes. The raster's size in device pixels
    // (empty when there is none).
    QSize DeviceSize() const;
    // Writes pColours (0x00BBGGRR or system colour codes, one per device pixel from column pLeft
    // on) into the device rows pTop to pTop + pRows - 1. Whatever falls outside the raster is
    // left out.
    void PutDeviceRows(int pLeft, int pTop, int pRows, std::span<const std::int32_t> pColours);

    // ---- text ----
    // Writes the text in ForeColor with its top left corner at the current position, then moves
    // to the start of the next line (ScaleLeft, one line lower), as a picture box does.
    void Print(const QString& pText);
    // Writes the text turned counter-clockwise by the angle, rotating about the top left corner
    // of the text at (x, y) (that is where the text starts), in the given font. The current
    // position becomes (x, y) and then advances like Print.
    void PrintRotated(const QString& pText, double pX, double pY, double pDegrees,
                      const QFont& pFont);
    // Extents of the text in the widget's font, in user units (magnitudes; NaN when the scale
    // cannot map). Several lines measure as the widest line and all lines' height.
    double TextWidth(const QString& pText) const;
    double TextHeight(const QString& pText) const;

    // ---- tool tip ----
    void SetToolTipText(const QString& pText) { setToolTip(pText); }
    QString ToolTipText() const { return toolTip(); }

    // ---- redrawing a band of device columns ----
    // Between BeginColumnBand and EndColumnBand drawing goes to a scratch picture, Cls clears
    // only the band there, and EndColumnBand copies device columns pLeft to pRight (inclusive)
    // into the picture and repaints only that strip of the widget. Shapes are drawn whole, not
    // clipped to the band, so every pixel of the band gets exactly the colour the same calls
    // give it over the whole picture, while pixels outside the band keep theirs. Callers redraw
    // everything that reaches into the band, in the order of a full redraw.
    void BeginColumnBand(int pLeft, int pRight);
    void EndColumnBand();
    bool InColumnBand() const { return m_band.has_value(); }

    // The finished picture, device pixels with the device pixel ratio set.
    const QImage& Raster() const;
    double DevicePixelRatio() const;
    // Lets tests exercise HiDPI rasters on any screen; 0 returns to the screen's ratio.
    void SetDevicePixelRatioForTesting(double pRatio);

protected:
    void paintEvent(QPaintEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;

private:
    struct DevicePoint {
        double x;
        double y;
    };

    double EffectiveRatio() const;
    // A hidden widget gets no resize events, so the raster follows the widget's size and ratio
    // lazily, before every use; that is why the raster state is mutable.
    void SyncRaster() const;
    void Reallocate(bool pKeepPicture) const;
    // Leaving the pixel mode starts the user scale from the pixel scale in force.
    void EnterUserMode();
    bool CanMap() const;
    // Mapping() for the raster as it is, without following the widget first.
    std::optional<DeviceMapping> MappingInForce() const;
    // User position to device pixels, nullopt when it cannot be mapped.
    std::optional<DevicePoint> ToDevice(double pX, double pY) const;
    int PenWidthInDevicePixels() const;
    // The shared painter, opened on first use; nullptr when there is no raster.
    QPainter* Painter();
    void EndPainting() const;
    void ApplyPen(QPainter& pPainter);
    void ScheduleUpdate();
    // The picture drawing goes to: the raster, or the scratch picture while a band is redrawn.
    QImage& Target() const { return m_band ? m_scratch : m_raster; }
    // A solid stroke along one device column written as a filled rectangle: the cells a
    // vertical line of the pen width covers with its square caps.
    void FillColumnCells(QPainter& pPainter, double pX, double pY1, double pY2,
                         const QColor& pColour);
    // A stroke between two pixel cells (device coordinates of their top left corners) that
    // covers both cells with the pen width.
    void StrokeCells(double pX1, double pY1, double pX2, double pY2);
    // The stroke on an open painter with the pen applied; false when nothing was drawn.
    bool StrokeCellsWith(QPainter& pPainter, double pX1, double pY1, double pX2, double pY2);
    // The line the painter strokes between two cells, clipped to a margin around the raster;
    // nullopt when none of it can show.
    std::optional<QLineF> StrokeLine(double pX1, double pY1, double pX2, double pY2) const;
    void FillCells(double pX, double pY, const QColor& pColour);
    void DrawTextAt(const QString& pText, double pX, double pY, double pDegrees,
                    const QFont& pFont);

    // The raster is declared before the painter so that the painter ends before it goes.
    mutable QImage m_raster;
    // Where a band is drawn before it is copied into the raster; kept between bands.
    mutable QImage m_scratch;
    mutable std::optional<QPainter> m_painter;
    // Device columns of the band being redrawn, left and right inclusive.
    std::optional<std::pair<int, int>> m_band;
    // Slanted lines of one CellLines call, kept to avoid allocating per frame.
    std::vector<QLineF> m_lineBuffer;
    mutable QSize m_rasterLayout; // the widget size the raster was made for
    mutable double m_dpr = 1.0;
    mutable bool m_penDirty = true;
    bool m_updatePending = false;
    double m_dprOverride = 0.0;

    ScaleMode m_scaleMode = ScaleMode::Pixel;
    // The user scale; unused in the pixel mode.
    double m_scaleLeft = 0.0;
    double m_scaleTop = 0.0;
    double m_scaleWidth = 1.0;
    double m_scaleHeight = 1.0;
    double m_currentX = 0.0;
    double m_currentY = 0.0;

    std::int32_t m_foreColor = 0x000000;
    std::int32_t m_backColor = 0xFFFFFF;
    std::int32_t m_fillColor = 0x000000;
    FillStyle m_fillStyle = FillStyle::Transparent;
    DrawStyle m_drawStyle = DrawStyle::Solid;
    int m_drawWidth = 1;
};

} // namespace trv5::platform
