// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/look/flat_style.h"

#include "ui/look/look.h"

#include <QApplication>
#include <QLineEdit>
#include <QPainter>
#include <QStyleFactory>
#include <QStyleOption>

#include <algorithm>

namespace skyhold {

namespace {

constexpr qreal kRadius = 4;
constexpr int kIndicator = 16; // of boxes and options, beside letters of 12 pixels

QFont boldFont(const QWidget* widget) {
    QFont font = widget ? widget->font() : QApplication::font();
    font.setBold(true);
    return font;
}

void drawBox(const QRect& rect, const QColor& edge, const QBrush& fill, QPainter& painter) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(edge);
    painter.setBrush(fill);
    painter.drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), kRadius, kRadius);
    painter.restore();
}

void drawButton(const QStyleOption& option, QPainter& painter) {
    const bool enabled = option.state & QStyle::State_Enabled;
    QColor fill = option.palette.color(QPalette::Button);
    if (!enabled)
        fill = look::kWindow;
    else if (option.state & (QStyle::State_Sunken | QStyle::State_On))
        fill = fill.darker(125);
    else if (option.state & QStyle::State_MouseOver)
        fill = fill.lighter(118);
    const bool focused = enabled && (option.state & QStyle::State_HasFocus);
    drawBox(option.rect, focused ? look::kAccent : look::kEdge, fill, painter);
}

void drawField(const QStyleOption& option, QPainter& painter) {
    const bool enabled = option.state & QStyle::State_Enabled;
    const bool focused = option.state & QStyle::State_HasFocus;
    const QColor fill = enabled ? option.palette.color(QPalette::Base) : look::kWindow;
    drawBox(option.rect, focused ? look::kAccent : look::kEdge, fill, painter);
}

void drawCaret(const QLineEdit* box, QPainter& painter) {
    if (!box || !box->hasFocus() || box->isReadOnly())
        return;
    // The box reserves as much on either side of its caret, 5 to the left.
    const QRect caret = box->inputMethodQuery(Qt::ImCursorRectangle).toRect();
    painter.fillRect(QRect(caret.left() + 5, caret.top(), 2, caret.height()), look::kAccent);
}

QColor indicatorEdge(const QStyleOption& option) {
    if (!(option.state & QStyle::State_Enabled))
        return look::kEdge;
    return option.state & QStyle::State_HasFocus ? look::kAccent : look::kDimText;
}

QColor indicatorMark(const QStyleOption& option) {
    return option.state & QStyle::State_Enabled ? look::kAccent : look::kDisabledText;
}

// They are drawn at the size that goes with the usual letters.
void toIndicator(const QStyleOption& option, QPainter& painter) {
    painter.translate(option.rect.topLeft());
    painter.scale(option.rect.width() / double{kIndicator},
                  option.rect.height() / double{kIndicator});
}

void drawCheck(const QStyleOption& option, QPainter& painter) {
    const QRectF box = QRectF(0, 0, kIndicator, kIndicator).adjusted(1.5, 1.5, -1.5, -1.5);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    toIndicator(option, painter);
    const bool on = option.state & QStyle::State_On;
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

void drawRadio(const QStyleOption& option, QPainter& painter) {
    const QRectF box = QRectF(0, 0, kIndicator, kIndicator).adjusted(1.5, 1.5, -1.5, -1.5);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    toIndicator(option, painter);
    painter.setPen(QPen(indicatorEdge(option), 1.2));
    painter.setBrush(look::kField);
    painter.drawEllipse(box);
    if (option.state & QStyle::State_On) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(indicatorMark(option));
        painter.drawEllipse(box.adjusted(3, 3, -3, -3));
    }
    painter.restore();
}

void drawTab(const QStyleOption& option, QPainter& painter) {
    const QRect line(option.rect.left(), option.rect.bottom() - 2, option.rect.width(), 3);
    if (option.state & QStyle::State_Selected)
        painter.fillRect(line, look::kAccent);
    else if (option.state & QStyle::State_MouseOver)
        painter.fillRect(line, look::kEdge);
}

// A plain bar without arrows.
void drawScrollBar(const QStyleOptionSlider& option, const QRect& slider, QPainter& painter) {
    painter.fillRect(option.rect, look::kWindow);
    if (option.minimum == option.maximum)
        return;
    const bool held = option.state & (QStyle::State_Sunken | QStyle::State_MouseOver);
    constexpr int kInset = 3;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(held ? look::kDimText : look::kEdge);
    painter.drawRoundedRect(slider.adjusted(kInset, kInset, -kInset, -kInset), kRadius, kRadius);
    painter.restore();
}

void drawSlider(const QStyleOptionSlider& option, const QRect& handle, QPainter& painter) {
    const bool upright = option.orientation == Qt::Vertical;
    const QPoint middle = option.rect.center();
    const QRect line = upright ? QRect(middle.x() - 1, option.rect.top(), 3, option.rect.height())
                               : QRect(option.rect.left(), middle.y() - 1, option.rect.width(), 3);
    painter.fillRect(line, look::kEdge);
    const bool focused = option.state & QStyle::State_HasFocus;
    drawBox(handle, focused ? look::kAccent : look::kDimText, look::kButton, painter);
}

QRect scrollBarPart(const QStyleOptionSlider& option, QStyle::SubControl part) {
    constexpr int kShortest = 28;
    const QRect& groove = option.rect;
    const bool upright = option.orientation == Qt::Vertical;
    const int room = upright ? groove.height() : groove.width();
    const int range = option.maximum - option.minimum;
    const int length =
        range <= 0 ? room
                   : std::clamp(room * option.pageStep / std::max(1, range + option.pageStep),
                                std::min(kShortest, room), room);
    const int start = QStyle::sliderPositionFromValue(
        option.minimum, option.maximum, option.sliderPosition, room - length, option.upsideDown);
    const auto piece = [&](int from, int to) {
        return upright ? QRect(groove.left(), groove.top() + from, groove.width(), to - from)
                       : QRect(groove.left() + from, groove.top(), to - from, groove.height());
    };
    switch (part) {
    case QStyle::SC_ScrollBarGroove:
        return groove;
    case QStyle::SC_ScrollBarSlider:
        return piece(start, start + length);
    case QStyle::SC_ScrollBarSubPage:
        return piece(0, start);
    case QStyle::SC_ScrollBarAddPage:
        return piece(start + length, room);
    default:
        return {};
    }
}

void drawComboBox(const QStyleOptionComboBox& option, QPainter& painter) {
    drawButton(option, painter);
    const QPointF tip(option.rect.right() - 14, option.rect.center().y() + 3);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(option.state & QStyle::State_Enabled ? look::kText : look::kDisabledText,
                        1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF{tip - QPointF(4, 4), tip, tip + QPointF(4, -4)});
    painter.restore();
}

// Two chevrons: "more of it".
QIcon moreIcon() {
    constexpr int kScale = 2; // sharp on fine screens, too
    QPixmap picture(16 * kScale, 16 * kScale);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(kScale, kScale);
    painter.setPen(QPen(look::kText, 1.4));
    for (const qreal left : {3.5, 8.5})
        painter.drawPolyline(QPolygonF{QPointF(left, 4), QPointF(left + 4, 8), QPointF(left, 12)});
    painter.end();
    picture.setDevicePixelRatio(kScale);
    return QIcon(picture);
}

} // namespace

// By hand, for a style sheet would be matched against every widget at start.
FlatStyle::FlatStyle()
    : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

void FlatStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                              QPainter* painter, const QWidget* widget) const {
    switch (element) {
    case PE_PanelButtonCommand:
        drawButton(*option, *painter);
        return;
    case PE_PanelLineEdit:
        drawField(*option, *painter);
        if (lookInForce() == Look::Night)
            drawCaret(qobject_cast<const QLineEdit*>(widget), *painter);
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

void FlatStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                            const QWidget* widget) const {
    if (element == CE_HeaderSection) {
        painter->fillRect(option->rect, look::kButton);
        painter->fillRect(QRect(option->rect.topRight(), QSize(1, option->rect.height())),
                          look::kEdge);
        return;
    }
    if (element == CE_SizeGrip || element == CE_Splitter)
        return; // the cursor shows it
    if (element == CE_TabBarTabShape) {
        drawTab(*option, *painter);
        return;
    }
    const auto* entry = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element == CE_MenuItem && entry && entry->menuItemType == QStyleOptionMenuItem::Separator) {
        const int y = option->rect.center().y();
        painter->setPen(look::kEdge);
        painter->drawLine(option->rect.left() + 6, y, option->rect.right() - 6, y);
        return;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

// The title stands in bold inside the group's card.
QRect FlatStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                SubControl part, const QWidget* widget) const {
    const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control == CC_ScrollBar && slider)
        return scrollBarPart(*slider, part);
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

void FlatStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                   QPainter* painter, const QWidget* widget) const {
    const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option);
    const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control == CC_ScrollBar && slider) {
        drawScrollBar(*slider, subControlRect(control, option, SC_ScrollBarSlider, widget),
                      *painter);
        return;
    }
    if (control == CC_Slider && slider) {
        drawSlider(*slider, subControlRect(control, option, SC_SliderHandle, widget), *painter);
        return;
    }
    if (control == CC_ComboBox && combo && !combo->editable) {
        drawComboBox(*combo, *painter);
        return;
    }
    if (control != CC_GroupBox) {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        return;
    }
    painter->save();
    painter->setFont(boldFont(widget));
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    painter->restore();
}

int FlatStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                           const QWidget* widget) const {
    switch (metric) {
    case PM_TextCursorWidth:
        // The usual one is the ground inverted: white on black.
        if (lookInForce() == Look::Night)
            return 0;
        break;
    case PM_TabBarTabHSpace:
        return 2 * (widget ? widget->fontMetrics().height() : 14);
    case PM_TabBarTabVSpace:
        return widget ? widget->fontMetrics().height() : 14;
    case PM_ButtonMargin:
        return 11;
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        return widget ? std::max(kIndicator, QFontInfo(widget->font()).pixelSize() * 4 / 3)
                      : kIndicator;
    case PM_TabBarTabShiftVertical:
    case PM_TabBarTabShiftHorizontal:
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
        return 0;
    default:
        break;
    }
    return QProxyStyle::pixelMetric(metric, option, widget);
}

QRect FlatStyle::subElementRect(SubElement element, const QStyleOption* option,
                                const QWidget* widget) const {
    const QRect rect = QProxyStyle::subElementRect(element, option, widget);
    return element == SE_LineEditContents ? rect.adjusted(3, 0, -3, 0) : rect;
}

int FlatStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                         QStyleHintReturn* answer) const {
    // The buttons of the platform's dialogs look like all others. A shadow behind what is disabled
    // doubles its letters on a dark ground.
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons || hint == SH_EtchDisabledText)
        return 0;
    return QProxyStyle::styleHint(hint, option, widget, answer);
}

QSize FlatStyle::sizeFromContents(ContentsType type, const QStyleOption* option,
                                  const QSize& contents, const QWidget* widget) const {
    constexpr QSize kRoomier(0, 4);
    QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
    if (type == CT_MenuBarItem)
        size = {contents.width() + option->fontMetrics.height(), size.height() * 5 / 4};
    const bool tight = type == CT_LineEdit || type == CT_ComboBox || type == CT_ItemViewItem;
    return tight ? size + kRoomier : size;
}

QPixmap FlatStyle::generatedIconPixmap(QIcon::Mode mode, const QPixmap& pixmap,
                                       const QStyleOption* option) const {
    const QPixmap made = QProxyStyle::generatedIconPixmap(mode, pixmap, option);
    return lookInForce() == Look::Night ? QPixmap::fromImage(look::icon(made.toImage())) : made;
}

QIcon FlatStyle::standardIcon(StandardPixmap which, const QStyleOption* option,
                              const QWidget* widget) const {
    // Every menu bar asks for it; Qt's own is a file, which takes the libraries of all image
    // formats.
    if (which == SP_ToolBarHorizontalExtensionButton)
        return moreIcon();
    QIcon icon = QProxyStyle::standardIcon(which, option, widget);
    if (lookInForce() != Look::Night)
        return icon;
    QIcon shown;
    for (const QSize& size : icon.availableSizes())
        shown.addPixmap(QPixmap::fromImage(look::icon(icon.pixmap(size).toImage())));
    return shown;
}

} // namespace skyhold
