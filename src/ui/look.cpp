#include "ui/look.h"

#include <QApplication>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>

namespace skyhold {

namespace {

constexpr qreal kRadius = 4;

// Draws flat controls by hand; a style sheet would be matched against every widget at start.
class FlatStyle : public QProxyStyle {
  public:
    FlatStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override {
        switch (element) {
        case PE_PanelButtonCommand:
            drawButton(*option, *painter);
            return;
        case PE_PanelLineEdit:
            drawField(*option, *painter);
            return;
        case PE_FrameGroupBox:
            drawBox(option->rect, look::kEdge, Qt::NoBrush, *painter);
            return;
        case PE_FrameTabWidget:
            painter->fillRect(QRect(option->rect.topLeft(), QSize(option->rect.width(), 1)),
                              look::kEdge);
            return;
        case PE_FrameFocusRect:
            drawBox(option->rect, look::kAccent, Qt::NoBrush, *painter);
            return;
        default:
            QProxyStyle::drawPrimitive(element, option, painter, widget);
        }
    }

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
        if (element == CE_TabBarTabShape) {
            drawTab(*option, *painter);
            return;
        }
        QProxyStyle::drawControl(element, option, painter, widget);
    }

    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override {
        switch (metric) {
        case PM_TabBarTabHSpace:
            return 28;
        case PM_TabBarTabVSpace:
            return 14;
        case PM_ButtonMargin:
            return 10;
        case PM_TabBarTabShiftVertical:
        case PM_TabBarTabShiftHorizontal:
        case PM_ButtonShiftHorizontal:
        case PM_ButtonShiftVertical:
            return 0;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
        }
    }

  private:
    static void drawBox(const QRect& rect, const QColor& edge, const QBrush& fill,
                        QPainter& painter) {
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(edge);
        painter.setBrush(fill);
        painter.drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), kRadius, kRadius);
        painter.restore();
    }

    static void drawButton(const QStyleOption& option, QPainter& painter) {
        const bool enabled = option.state & State_Enabled;
        QColor fill = option.palette.color(QPalette::Button);
        if (!enabled)
            fill = look::kWindow;
        else if (option.state & (State_Sunken | State_On))
            fill = fill.darker(125);
        else if (option.state & State_MouseOver)
            fill = fill.lighter(118);
        const bool focused = enabled && (option.state & State_HasFocus);
        drawBox(option.rect, focused ? look::kAccent : look::kEdge, fill, painter);
    }

    static void drawField(const QStyleOption& option, QPainter& painter) {
        const bool enabled = option.state & State_Enabled;
        const bool focused = option.state & State_HasFocus;
        const QColor fill = enabled ? option.palette.color(QPalette::Base) : look::kWindow;
        drawBox(option.rect, focused ? look::kAccent : look::kEdge, fill, painter);
    }

    static void drawTab(const QStyleOption& option, QPainter& painter) {
        const QRect line(option.rect.left(), option.rect.bottom() - 2, option.rect.width(), 3);
        if (option.state & State_Selected)
            painter.fillRect(line, look::kAccent);
        else if (option.state & State_MouseOver)
            painter.fillRect(line, look::kEdge);
    }
};

QPalette darkPalette() {
    QPalette palette;
    palette.setColor(QPalette::Window, look::kWindow);
    palette.setColor(QPalette::WindowText, look::kText);
    palette.setColor(QPalette::Base, look::kField);
    palette.setColor(QPalette::AlternateBase, look::kCard);
    palette.setColor(QPalette::Text, look::kText);
    palette.setColor(QPalette::PlaceholderText, look::kDisabledText);
    palette.setColor(QPalette::Button, look::kButton);
    palette.setColor(QPalette::ButtonText, look::kText);
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::ToolTipBase, look::kCard);
    palette.setColor(QPalette::ToolTipText, look::kText);
    palette.setColor(QPalette::Highlight, look::kAccent);
    palette.setColor(QPalette::HighlightedText, look::kField);
    palette.setColor(QPalette::Link, look::kAccent);
    palette.setColor(QPalette::Light, look::kButton.lighter(130));
    palette.setColor(QPalette::Midlight, look::kButton.lighter(115));
    palette.setColor(QPalette::Mid, look::kEdge);
    palette.setColor(QPalette::Dark, look::kField);
    palette.setColor(QPalette::Shadow, Qt::black);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, look::kDisabledText);
    return palette;
}

} // namespace

void applyLook(QApplication& application) {
    application.setStyle(new FlatStyle); // owned by the application
    application.setPalette(darkPalette());
}

QColor screenColour(Colour colour) {
    return QColor(colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF);
}

} // namespace skyhold
