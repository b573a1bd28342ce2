#include "vexqt/inspector/widgets/PictureWell.h"

#include <QClipboard>
#include <QDropEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QTemporaryDir>

#include "inspector/widgets/field_tests.h"

using namespace vexqt;
using namespace vexqt::testing;

class PictureWellTest : public QObject {
    Q_OBJECT

private slots:
    void takesAPictureFileThatIsDropped_data() {
        QTest::addColumn<QString>("name");
        for (const char* name : {"dropped.png", "dropped.bmp", "dropped.jpg"})
            QTest::newRow(name) << name;
    }
    void takesAPictureFileThatIsDropped() {
        QFETCH(QString, name);
        QVERIFY(picture(Qt::red).save(path(name)));
        PictureWell field;
        field.setValue(picture(Qt::blue));
        const QSignalSpy changed(&field, &PictureWell::valueChanged);
        QMimeData file;
        file.setUrls({QUrl::fromLocalFile(path(name))});
        QVERIFY(drop(field, file));
        QCOMPARE(changed.count(), 1);
        const auto taken = field.value().value<QImage>();
        QCOMPARE(taken.size(), QSize(3, 2));
        QVERIFY(qRed(taken.pixel(1, 1)) > 240 && qBlue(taken.pixel(1, 1)) < 15);
    }

    void refusesAFileThatIsNoPicture() {
        QFile text(path("text.png"));
        QVERIFY(text.open(QIODevice::WriteOnly) && text.write("no picture") > 0);
        text.close();
        PictureWell field;
        field.setValue(picture(Qt::blue));
        const QSignalSpy changed(&field, &PictureWell::valueChanged);
        const QSignalSpy refused(&field, &PictureWell::editRefused);
        QMimeData file;
        file.setUrls({QUrl::fromLocalFile(text.fileName())});
        drop(field, file);
        file.setUrls({QUrl::fromLocalFile(path("missing.png"))});
        drop(field, file);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(refused.count(), 2);
        QCOMPARE(field.value().value<QImage>(), picture(Qt::blue));
    }

    void refusesAPictureThatClaimsToBeHuge() {
        // The header of a PNG of 60,000 pixels a side, and no pixels behind it.
        const QByteArray header = QByteArray::fromHex(
            "89504e470d0a1a0a0000000d494844520000ea600000ea6008020000000fb0e215000000"
            "004944415435af061e");
        QFile png(path("huge.png"));
        QVERIFY(png.open(QIODevice::WriteOnly) && png.write(header) == header.size());
        png.close();
        PictureWell field;
        const QSignalSpy refused(&field, &PictureWell::editRefused);
        field.takeFile(png.fileName());
        QCOMPARE(refused.count(), 1);
        QVERIFY(refused.front().front().toString().contains("too large"));
        QVERIFY(!field.value().isValid());
    }

    void takesAPictureThatIsDroppedOrPasted() {
        PictureWell field;
        const QSignalSpy changed(&field, &PictureWell::valueChanged);
        QMimeData data;
        data.setImageData(picture(Qt::green));
        QVERIFY(drop(field, data));
        QCOMPARE(field.value().value<QImage>(), picture(Qt::green));
        QGuiApplication::clipboard()->setImage(picture(Qt::red));
        QTest::keySequence(&field, QKeySequence::Paste);
        QCOMPARE(field.value().value<QImage>().pixelColor(0, 0), QColor(Qt::red));
        QCOMPARE(changed.count(), 2);
    }

    void refusesToPasteWhatIsNoPicture() {
        PictureWell field;
        const QSignalSpy refused(&field, &PictureWell::editRefused);
        QGuiApplication::clipboard()->setText("no picture");
        QTest::keySequence(&field, QKeySequence::Paste);
        QCOMPARE(refused.count(), 1);
    }

    void removesThePictureWithDeleteWhereItMayBeAbsent() {
        PictureWell field;
        field.setValue(picture(Qt::blue));
        const QSignalSpy changed(&field, &PictureWell::valueChanged);
        field.configure({.kind = ValueKind::Picture});
        QTest::keyClick(&field, Qt::Key_Delete);
        QVERIFY(field.value().isValid());
        field.configure({.kind = ValueKind::Picture, .isOptional = true});
        QTest::keyClick(&field, Qt::Key_Delete);
        QCOMPARE(changed.count(), 1);
        QVERIFY(!field.value().isValid());
        QTest::keyClick(&field, Qt::Key_Delete);
        QCOMPARE(changed.count(), 1);
    }

    void takesNothingWhenReadOnly() {
        PictureWell field;
        field.setValue(picture(Qt::blue));
        field.setReadOnly(true);
        QMimeData data;
        data.setImageData(picture(Qt::green));
        QVERIFY(!drop(field, data));
        QGuiApplication::clipboard()->setImage(picture(Qt::red));
        QTest::keySequence(&field, QKeySequence::Paste);
        QTest::keyClick(&field, Qt::Key_Delete);
        QCOMPARE(field.value().value<QImage>(), picture(Qt::blue));
    }

private:
    QString path(const QString& name) const { return folder_.filePath(name); }

    static QImage picture(Qt::GlobalColor color) {
        QImage image(3, 2, QImage::Format_RGB32);
        image.fill(color);
        return image;
    }

    /// Whether the field took it for something that it might take.
    static bool drop(PictureWell& field, const QMimeData& data) {
        QDragEnterEvent enters(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        enters.ignore();
        QCoreApplication::sendEvent(&field, &enters);
        QDropEvent drops(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        if (enters.isAccepted()) QCoreApplication::sendEvent(&field, &drops);
        return enters.isAccepted();
    }

    QTemporaryDir folder_;
};

static const FieldTest<PictureWellTest> kTest;
#include "PictureWell_test.moc"
