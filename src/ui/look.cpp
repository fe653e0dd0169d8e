#include "ui/look.h"

#include <QApplication>
#include <QPainter>
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
    FlatStyle()
        : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override {
        switch (element) {
        case PE_PanelButtonCommand:
            drawButton(*option, *painter);
            return;
        case PE_PanelLineEdit:
            drawField(*option, *painter);
            return;
        case PE_Frame:
            drawBox(option->rect, look::kEdge, Qt::NoBrush, *painter);
            return;
        case PE_FrameGroupBox:
            drawBox(option->rect, look::kCard, look::kGroup, *painter);
            return;
        case PE_IndicatorCheckBox:
            drawCheck(*option, *painter);
            return;
        case PE_IndicatorRadioButton:
            drawRadio(*option, *painter);
            return;
        case PE_PanelMenu:
            painter->fillRect(option->rect, look::kCard);
            return;
        case PE_FrameMenu:
            painter->setPen(look::kEdge);
            painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
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
        const auto* entry = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        if (element == CE_MenuItem && entry &&
            entry->menuItemType == QStyleOptionMenuItem::Separator) {
            const int y = option->rect.center().y();
            painter->setPen(look::kEdge);
            painter->drawLine(option->rect.left() + 6, y, option->rect.right() - 6, y);
            return;
        }
        QProxyStyle::drawControl(element, option, painter, widget);
    }

    // The title stands in bold inside the group's card.
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override {
        if (control != CC_GroupBox)
            return QProxyStyle::subControlRect(control, option, part, widget);
        const QFontMetrics metrics(boldFont(widget));
        constexpr int kTitleTop = 10;
        const auto* box = qstyleoption_cast<const QStyleOptionGroupBox*>(option);
        if (part == SC_GroupBoxLabel && box)
            return {14, kTitleTop, metrics.horizontalAdvance(box->text) + 2, metrics.height()};
        if (part == SC_GroupBoxContents)
            return option->rect.adjusted(0, kTitleTop + metrics.height(), 0, 0);
        return option->rect;
    }

    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override {
        if (control != CC_GroupBox) {
            QProxyStyle::drawComplexControl(control, option, painter, widget);
            return;
        }
        painter->save();
        painter->setFont(boldFont(widget));
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        painter->restore();
    }

    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override {
        switch (metric) {
        case PM_TabBarTabHSpace:
            return 28;
        case PM_TabBarTabVSpace:
            return 14;
        case PM_ButtonMargin:
            return 11;
        case PM_IndicatorWidth:
        case PM_IndicatorHeight:
        case PM_ExclusiveIndicatorWidth:
        case PM_ExclusiveIndicatorHeight:
            return 16;
        case PM_TabBarTabShiftVertical:
        case PM_TabBarTabShiftHorizontal:
        case PM_ButtonShiftHorizontal:
        case PM_ButtonShiftVertical:
            return 0;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
        }
    }

    QRect subElementRect(SubElement element, const QStyleOption* option,
                         const QWidget* widget) const override {
        const QRect rect = QProxyStyle::subElementRect(element, option, widget);
        return element == SE_LineEditContents ? rect.adjusted(3, 0, -3, 0) : rect;
    }

    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                           const QWidget* widget) const override {
        constexpr QSize kRoomier(0, 4);
        const QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
        const bool tight = type == CT_LineEdit || type == CT_ComboBox || type == CT_ItemViewItem;
        return tight ? size + kRoomier : size;
    }

  private:
    static QFont boldFont(const QWidget* widget) {
        QFont font = widget ? widget->font() : QApplication::font();
        font.setBold(true);
        return font;
    }

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

    static QColor indicatorEdge(const QStyleOption& option) {
        if (!(option.state & State_Enabled))
            return look::kEdge;
        return option.state & State_HasFocus ? look::kAccent : look::kDimText;
    }

    static QColor indicatorMark(const QStyleOption& option) {
        return option.state & State_Enabled ? look::kAccent : look::kDisabledText;
    }

    static void drawCheck(const QStyleOption& option, QPainter& painter) {
        const QRectF box = QRectF(option.rect).adjusted(1.5, 1.5, -1.5, -1.5);
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        const bool on = option.state & State_On;
        painter.setPen(QPen(on ? indicatorMark(option) : indicatorEdge(option), 1.2));
        painter.setBrush(on ? indicatorMark(option) : look::kField);
        painter.drawRoundedRect(box, 3, 3);
        if (on) {
            painter.setPen(QPen(look::kField, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            painter.drawPolyline(QPolygonF{box.topLeft() + QPointF(3, 6.5),
                                           box.topLeft() + QPointF(5.5, 9.5),
                                           box.topLeft() + QPointF(10, 3.5)});
        }
        painter.restore();
    }

    static void drawRadio(const QStyleOption& option, QPainter& painter) {
        const QRectF box = QRectF(option.rect).adjusted(1.5, 1.5, -1.5, -1.5);
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(indicatorEdge(option), 1.2));
        painter.setBrush(look::kField);
        painter.drawEllipse(box);
        if (option.state & State_On) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(indicatorMark(option));
            painter.drawEllipse(box.adjusted(3, 3, -3, -3));
        }
        painter.restore();
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
