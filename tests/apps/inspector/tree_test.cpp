#include <QAbstractItemModelTester>
#include <QLocale>
#include <QTest>

#include "apps/inspector/AtomFilter.h"
#include "apps/inspector/AtomTreeModel.h"
#include "movies.h"
#include "vexqt/asset/VexQTAsset.h"
#include "vexqt/inspector/qt_value.h"

namespace vexqt::inspector_app {

class TreeTest : public QObject {
    Q_OBJECT

private:
    using Tester = QAbstractItemModelTester;
    static constexpr auto kFatal = Tester::FailureReportingMode::QtTest;

    std::unique_ptr<VexQTAsset> asset_;
    AtomTreeModel model_;

    VexQTAtom& at(const char* path) { return AtomPath(path).atomIn(asset_->rootAtoms()); }
    QString shown(const char* path, AtomTreeModel::Column column) {
        return model_.indexOf(&at(path)).siblingAtColumn(column).data().toString();
    }

private slots:
    void init() {
        asset_ = VexQTAsset::initWithData(testing::smallMovie(), {.tolerant = true});
        model_.setRoots(&asset_->rootAtoms());
    }
    void cleanup() { model_.setRoots(nullptr); }

    void showsTypeNameSizeAndOffset() {
        QCOMPARE(model_.rowCount(), 3);
        QCOMPARE(shown("moov.mvhd", AtomTreeModel::TypeColumn), "mvhd");
        QCOMPARE(shown("moov.mvhd", AtomTreeModel::NameColumn), "Movie Header");
        QCOMPARE(shown("moov.mvhd", AtomTreeModel::SizeColumn), "108");
        QCOMPARE(shown("moov.mvhd", AtomTreeModel::OffsetColumn), "44");
    }

    void tellsTracksApartByTheirMedia() {
        QCOMPARE(shown("moov.trak", AtomTreeModel::NameColumn), "Track (vide)");
        QCOMPARE(shown("moov.trak[1]", AtomTreeModel::NameColumn), "Track (soun)");
    }

    void givesPathsAsTheCommandTakesThem() {
        QCOMPARE(model_.pathOf(&at("moov.trak[1].tkhd")), "moov.trak[1].tkhd");
        QCOMPARE(model_.pathOf(nullptr), "");
        const VexQTAtom stranger;
        QCOMPARE(model_.pathOf(&stranger), "");
    }

    void findsAnAtomThatNobodyHasLookedAt() {
        const QModelIndex index = model_.indexOf(&at("moov.trak[1].mdia.hdlr"));
        QVERIFY(index.isValid());
        QCOMPARE(model_.atomAt(index), &at("moov.trak[1].mdia.hdlr"));
        QCOMPARE(model_.holderOf(&at("moov.trak[1].mdia.hdlr")), &at("moov.trak[1].mdia"));
        const VexQTAtom stranger;
        QVERIFY(!model_.indexOf(&stranger).isValid());
    }

    void keepsItsWordWhileAtomsComeAndGo() {
        const Tester tester(&model_, kFatal);
        VexQTAtom& movie = at("moov");
        const std::uint64_t size = movie.atomSize();
        const QPersistentModelIndex second = model_.indexOf(&at("moov.trak[1]"));
        auto taken = model_.take(&movie, 1);
        QCOMPARE(toQString(taken->atomTypeString()), "trak");
        QCOMPARE(movie.atomSize(), size - taken->atomSize());
        QCOMPARE(second.row(), 1);
        QCOMPARE(model_.pathOf(model_.atomAt(second)), "moov.trak");
        model_.insert(&movie, 1, std::move(taken));
        QCOMPARE(movie.atomSize(), size);
        QCOMPARE(second.row(), 2);
    }

    void takesRootAtomsToo() {
        const Tester tester(&model_, kFatal);
        auto taken = model_.take(nullptr, 1);
        QCOMPARE(toQString(taken->atomTypeString()), "mdat");
        QCOMPARE(model_.rowCount(), 2);
        model_.insert(nullptr, 1, std::move(taken));
        QCOMPARE(model_.rowCount(), 3);
    }

    void showsChildrenThatAnEditHasChanged() {
        const Tester tester(&model_, kFatal);
        VexQTAtom& movie = at("moov");
        const int count = model_.rowCount(model_.indexOf(&movie));
        movie.removeChildrenWithType("trak"_os);
        model_.refresh(&movie);
        QCOMPARE(model_.rowCount(model_.indexOf(&movie)), count - 2);
    }

    void marksProblems() {
        const Tester tester(&model_, kFatal);
        model_.setProblems({{&at("moov.mvhd"), QStringLiteral("is odd")}});
        const QModelIndex index = model_.indexOf(&at("moov.mvhd"));
        QVERIFY(index.data(Qt::ToolTipRole).toString().contains("is odd"));
        QVERIFY(
            index.siblingAtColumn(AtomTreeModel::NameColumn).data(Qt::DecorationRole).isValid());
    }

    void theFilterKeepsWhatAMatchIsInAndWhatIsInIt() {
        AtomFilter filter;
        filter.setSourceModel(&model_);
        const Tester tester(&filter, kFatal);
        filter.setText(QStringLiteral(" MDIA "));
        QCOMPARE(filter.rowCount(), 1);
        const QModelIndex movie = filter.index(0, 0);
        QCOMPARE(movie.data().toString(), "moov");
        QCOMPARE(filter.rowCount(movie), 2);
        const QModelIndex media = filter.index(0, 0, filter.index(0, 0, movie));
        QCOMPARE(media.data().toString(), "mdia");
        QCOMPARE(filter.rowCount(media), 2);
        filter.setText({});
        QCOMPARE(filter.rowCount(), 3);
    }

    void theFilterFollowsRemovals() {
        AtomFilter filter;
        filter.setSourceModel(&model_);
        const Tester tester(&filter, kFatal);
        filter.setText(QStringLiteral("tkhd"));
        QCOMPARE(filter.rowCount(filter.index(0, 0)), 2);
        const auto taken = model_.take(&at("moov"), 1);
        QCOMPARE(filter.rowCount(filter.index(0, 0)), 1);
    }

    void codesThatDoNotPrintAreStillSeen() {
        VexQTAtom zero(0, 8, nullptr, 0);
        QCOMPARE(typeFor(zero).size(), 4);
        for (const QChar character : typeFor(zero)) QVERIFY(character.isPrint());
    }
};

}  // namespace vexqt::inspector_app

QTEST_MAIN(vexqt::inspector_app::TreeTest)
#include "tree_test.moc"
