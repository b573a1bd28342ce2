#include "vexqt/inspector/qt_value.h"

#include <QColor>
#include <QDateTime>
#include <QImage>
#include <QTimeZone>
#include <algorithm>

namespace vexqt {

QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::string fromQString(const QString& text) { return text.toStdString(); }

namespace {

QImage imageFrom(const Picture& picture) {
    const ByteView pixels = picture.pixels();
    const QImage borrowed(pixels.data(), static_cast<int>(picture.width()),
                          static_cast<int>(picture.height()),
                          4 * static_cast<qsizetype>(picture.width()), QImage::Format_RGBA8888);
    return borrowed.copy();
}

Value pictureFrom(const QImage& image) {
    if (image.isNull()) return {};
    const QImage plain = image.convertToFormat(QImage::Format_RGBA8888);
    const auto width = static_cast<std::size_t>(plain.width());
    Bytes pixels;
    pixels.reserve(4 * width * static_cast<std::size_t>(plain.height()));
    for (int y = 0; y < plain.height(); ++y) {
        const uchar* row = plain.constScanLine(y);
        pixels.insert(pixels.end(), row, row + 4 * width);
    }
    return Picture(
        {static_cast<std::uint32_t>(plain.width()), static_cast<std::uint32_t>(plain.height())},
        std::move(pixels));
}

QColor colorFrom(const Color& color) {
    if (color.isGrey()) {
        const auto level = static_cast<float>(color.white());
        return QColor::fromRgbF(level, level, level, static_cast<float>(color.alpha()));
    }
    return QColor::fromRgbF(static_cast<float>(color.red()), static_cast<float>(color.green()),
                            static_cast<float>(color.blue()), static_cast<float>(color.alpha()));
}

Value matrixFrom(const QVariantList& numbers) {
    Matrix matrix;
    if (numbers.size() != static_cast<qsizetype>(matrix.size())) return {};
    for (std::size_t i = 0; i < matrix.size(); ++i)
        matrix[i] = numbers[static_cast<qsizetype>(i)].toDouble();
    return matrix;
}

QVariant variantFrom(const Number& number) {
    return std::visit([](auto held) { return toVariant(Value(held)); }, number.held());
}

}  // namespace

QVariant toVariant(const Value& value) {
    struct {
        QVariant operator()(std::monostate) const { return {}; }
        QVariant operator()(bool flag) const { return flag; }
        QVariant operator()(std::int64_t number) const { return qlonglong{number}; }
        QVariant operator()(std::uint64_t number) const { return qulonglong{number}; }
        QVariant operator()(double number) const { return number; }
        QVariant operator()(const std::string& text) const { return toQString(text); }
        QVariant operator()(const Bytes& bytes) const {
            // An empty byte array is not a null one: present and empty is not absent.
            QByteArray copy(static_cast<qsizetype>(bytes.size()), Qt::Uninitialized);
            std::ranges::copy(bytes, copy.begin());
            return copy;
        }
        QVariant operator()(Date date) const {
            return QDateTime::fromSecsSinceEpoch(date.time_since_epoch().count(), Qt::UTC);
        }
        QVariant operator()(const Color& color) const { return colorFrom(color); }
        QVariant operator()(const Number& number) const { return variantFrom(number); }
        QVariant operator()(const Picture& picture) const { return imageFrom(picture); }
        QVariant operator()(const Matrix& matrix) const {
            return QVariantList(matrix.begin(), matrix.end());
        }
        QVariant operator()(VexQTAtom*) const { return {}; }
    } const convert;
    return std::visit(convert, static_cast<const ValueVariant&>(value));
}

Value fromVariant(const QVariant& variant) {
    if (!variant.isValid()) return {};
    switch (variant.typeId()) {
        case QMetaType::Bool:
            return variant.toBool();
        case QMetaType::Int:
        case QMetaType::LongLong:
            return std::int64_t{variant.toLongLong()};
        case QMetaType::UInt:
        case QMetaType::ULongLong:
            return std::uint64_t{variant.toULongLong()};
        case QMetaType::Float:
        case QMetaType::Double:
            return variant.toDouble();
        case QMetaType::QString:
            return fromQString(variant.toString());
        case QMetaType::QByteArray: {
            const QByteArray bytes = variant.toByteArray();
            return Bytes(bytes.begin(), bytes.end());
        }
        case QMetaType::QDateTime: {
            const QDateTime date = variant.toDateTime();
            if (!date.isValid()) return {};
            return Date(std::chrono::seconds(date.toSecsSinceEpoch()));
        }
        case QMetaType::QColor: {
            const auto color = variant.value<QColor>();
            if (!color.isValid()) return {};
            return Color::rgb(color.redF(), color.greenF(), color.blueF(), color.alphaF());
        }
        case QMetaType::QImage:
            return pictureFrom(variant.value<QImage>());
        case QMetaType::QVariantList:
            return matrixFrom(variant.toList());
        default:
            return {};
    }
}

}  // namespace vexqt
