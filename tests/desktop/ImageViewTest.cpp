// SPDX-License-Identifier: MIT
#include "desktop/ImageView.h"

#include "tests/support/WindowTest.h"

#include <QAccessible>
#include <QImage>
#include <QSet>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>

namespace tarnwell::test
{

class ImageViewOfAKind : public ImageView
{
    Q_OBJECT
};

/// Independent of the screen's scale: sizes of pictures and painted areas are in device pixels.
class ImageViewTest : public testing::Test
{
protected:
    ImageViewTest()
    {
        m_view.setEmptyTitle(QStringLiteral("Drop a video here"));
        m_view.setEmptyHint(QStringLiteral("or choose Open"));
        m_view.resize(400, 300);
        m_view.show();
        EXPECT_TRUE(waitUntil([this] { return m_view.windowHandle() != nullptr && m_view.isVisible(); }));
        m_view.resize(400, 300);
    }

    static QImage plainPicture(int width, int height)
    {
        QImage picture(width, height, QImage::Format_RGB32);
        picture.fill(Qt::red);
        return picture;
    }

    /// The painted view, in device pixels.
    QImage painted() { return m_view.grab().toImage(); }

    /// The rectangle of the painted plain picture; every pixel in it has its colour.
    QRect placeOfPicture()
    {
        const QImage all = painted();
        QRect place;
        int count = 0;
        for (int y = 0; y < all.height(); ++y) {
            for (int x = 0; x < all.width(); ++x) {
                if (all.pixelColor(x, y) == QColor(Qt::red)) {
                    place |= QRect(x, y, 1, 1);
                    ++count;
                }
            }
        }
        EXPECT_EQ(count, place.width() * place.height()) << "not a rectangle of one colour";
        return place;
    }

    void expectCentred(const QRect& place)
    {
        const QImage all = painted();
        EXPECT_LE(std::abs(place.left() - (all.width() - 1 - place.right())), 1);
        EXPECT_LE(std::abs(place.top() - (all.height() - 1 - place.bottom())), 1);
    }

    static int colourCount(const QImage& picture)
    {
        QSet<QRgb> colours;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                colours.insert(picture.pixel(x, y));
        }
        return static_cast<int>(colours.size());
    }

    qreal scale() const { return m_view.devicePixelRatioF(); }

    ImageView m_view;
};

TEST_F(ImageViewTest, isPaintedAtTheScreensScale)
{
    const qreal expected
        = qEnvironmentVariableIsSet("QT_SCALE_FACTOR") ? qgetenv("QT_SCALE_FACTOR").toDouble() : 1;
    EXPECT_EQ(scale(), expected);
    EXPECT_EQ(painted().width(), qRound(400 * expected));
}

TEST_F(ImageViewTest, aSmallPictureIsEnlargedFourTimesAndCentred)
{
    m_view.setImage(plainPicture(40, 30));
    const QRect place = placeOfPicture();
    EXPECT_EQ(place.size(), (QSizeF(160, 120) * scale()).toSize());
    expectCentred(place);
}

TEST_F(ImageViewTest, theCornersOfASmallPictureAreItsOwn)
{
    QImage picture = plainPicture(41, 31);
    picture.setPixelColor(0, 0, Qt::green);
    picture.setPixelColor(40, 30, Qt::blue);
    m_view.setImage(plainPicture(41, 31));
    const QRect place = placeOfPicture();
    m_view.setImage(picture);
    EXPECT_EQ(painted().pixelColor(place.topLeft()), QColor(Qt::green));
    EXPECT_EQ(painted().pixelColor(place.bottomRight()), QColor(Qt::blue));
}

TEST_F(ImageViewTest, aPictureIsEnlargedSmoothly)
{
    QImage picture(40, 30, QImage::Format_RGB32);
    for (int x = 0; x < picture.width(); ++x) {
        for (int y = 0; y < picture.height(); ++y)
            picture.setPixel(x, y, x < 20 ? qRgb(0, 0, 0) : qRgb(255, 255, 255));
    }
    m_view.setImage(picture);
    const QImage all = painted();
    QSet<int> greys; // between black and white
    for (int x = all.width() / 4; x < all.width() * 3 / 4; ++x) {
        const int grey = qGray(all.pixel(x, all.height() / 2));
        if (grey > 0 && grey < 255)
            greys.insert(grey);
    }
    EXPECT_GE(greys.size(), 2);
}

TEST_F(ImageViewTest, aPictureFitsAndKeepsItsShape)
{
    for (const QSize size : {QSize(2000, 1000), QSize(1000, 2000), QSize(3000, 3000), QSize(200, 100)}) {
        SCOPED_TRACE(testing::Message() << size.width() << " x " << size.height());
        m_view.setImage(plainPicture(size.width(), size.height()));
        const QRect place = placeOfPicture();
        expectCentred(place);
        const QImage all = painted();
        EXPECT_TRUE(all.rect().contains(place));
        const bool fillsWidth = place.width() > all.width() - 60 * scale();
        const bool fillsHeight = place.height() > all.height() - 60 * scale();
        EXPECT_TRUE(fillsWidth || fillsHeight) << "smaller than it needs to be";
        EXPECT_NEAR(
            place.width() * size.height(), place.height() * size.width(), size.width() + size.height());
    }
}

TEST_F(ImageViewTest, aLargePictureKeepsItsColoursAndItsLastLines)
{
    for (const auto format : {QImage::Format_RGB32, QImage::Format_Indexed8}) {
        QImage picture(3000, 4001, QImage::Format_RGB32);
        picture.fill(Qt::red);
        for (int y = 2000; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                picture.setPixel(x, y, qRgb(0, 0, 255));
        }
        m_view.setImage(plainPicture(3000, 4001));
        const QRect place = placeOfPicture();
        m_view.setImage(picture.convertToFormat(format));
        const QImage all = painted();
        EXPECT_EQ(all.pixelColor(place.center().x(), place.top() + 2), QColor(Qt::red));
        EXPECT_EQ(
            all.pixelColor(place.center().x(), place.top() + place.height() * 48 / 100), QColor(Qt::red));
        EXPECT_EQ(
            all.pixelColor(place.center().x(), place.top() + place.height() * 52 / 100), QColor(Qt::blue));
        EXPECT_EQ(all.pixelColor(place.center().x(), place.bottom()), QColor(Qt::blue));
    }
}

TEST_F(ImageViewTest, onePixelIsFourPixelsWide)
{
    m_view.setImage(plainPicture(1, 1));
    const QRect place = placeOfPicture();
    EXPECT_EQ(place.size(), (QSizeF(4, 4) * scale()).toSize());
    expectCentred(place);
}

TEST_F(ImageViewTest, aLongThinPictureDoesNotVanish)
{
    m_view.setImage(plainPicture(10000, 1));
    EXPECT_EQ(placeOfPicture().height(), 1);
    EXPECT_GT(placeOfPicture().width(), 300 * scale());
    EXPECT_LE(placeOfPicture().width(), 400 * scale());
    m_view.setImage(plainPicture(1, 10000));
    EXPECT_EQ(placeOfPicture().width(), 1);
    EXPECT_GT(placeOfPicture().height(), 200 * scale());
    EXPECT_LE(placeOfPicture().height(), 300 * scale());
}

TEST_F(ImageViewTest, theImageIsTheVeryOneThatWasSet)
{
    EXPECT_TRUE(m_view.image().isNull());
    QImage picture(1920, 1080, QImage::Format_RGB32);
    picture.fill(Qt::darkCyan);
    picture.setPixelColor(5, 7, Qt::yellow);
    m_view.setImage(picture);
    painted();
    EXPECT_EQ(m_view.image().cacheKey(), picture.cacheKey());
    EXPECT_EQ(m_view.image(), picture);
}

TEST_F(ImageViewTest, anotherPictureOfTheSameSizeReplacesTheFirst)
{
    QImage other(40, 30, QImage::Format_RGB32);
    other.fill(Qt::blue);
    m_view.setImage(plainPicture(40, 30));
    const QRect place = placeOfPicture();
    m_view.setImage(other);
    EXPECT_EQ(painted().pixelColor(place.center()), QColor(Qt::blue));
    EXPECT_TRUE(placeOfPicture().isEmpty());
}

TEST_F(ImageViewTest, aPictureIsScaledAnewForANewSize)
{
    const QImage picture = plainPicture(2000, 1000);
    m_view.setImage(picture);
    const QRect first = placeOfPicture();
    m_view.resize(200, 150);
    const QRect smaller = placeOfPicture();
    EXPECT_LT(smaller.width(), painted().width()) << "it is cut off";
    expectCentred(smaller);
    m_view.resize(400, 300);
    EXPECT_EQ(placeOfPicture(), first);
}

TEST_F(ImageViewTest, aViewWithoutRoomPaintsNoPicture)
{
    m_view.setMinimumSize(1, 1);
    m_view.setImage(plainPicture(100, 100));
    for (const int side : {1, 20, 32}) {
        m_view.resize(side, side);
        EXPECT_TRUE(placeOfPicture().isEmpty()) << side;
    }
}

TEST_F(ImageViewTest, withoutAPictureItInvites)
{
    const QImage invitation = painted();
    EXPECT_GT(colourCount(invitation), 2) << "nothing but a plain surface";
    m_view.setEmptyTitle(QString());
    const QImage withoutTitle = painted();
    EXPECT_NE(withoutTitle, invitation);
    m_view.setEmptyHint(QString());
    EXPECT_NE(painted(), withoutTitle);
}

TEST_F(ImageViewTest, anInvitationsTextIsInTheTextColour)
{
    QPalette palette = m_view.palette();
    palette.setColor(QPalette::Window, Qt::white);
    palette.setColor(QPalette::WindowText, Qt::red);
    m_view.setPalette(palette);
    const QImage invitation = painted();
    bool hasTextColour = false;
    for (int y = 0; y < invitation.height(); ++y) {
        for (int x = 0; x < invitation.width(); ++x)
            hasTextColour = hasTextColour || invitation.pixelColor(x, y) == QColor(Qt::red);
    }
    EXPECT_TRUE(hasTextColour);
}

TEST_F(ImageViewTest, aNullImageBringsTheInvitationBack)
{
    const QImage invitation = painted();
    m_view.setImage(plainPicture(40, 30));
    EXPECT_NE(painted(), invitation);
    m_view.setImage(QImage());
    EXPECT_TRUE(m_view.image().isNull());
    EXPECT_EQ(painted(), invitation);
}

TEST_F(ImageViewTest, isAPictureToAssistiveToolsAndSaysWhatIsToBeSeen)
{
    const QAccessibleInterface* access = QAccessible::queryAccessibleInterface(&m_view);
    EXPECT_EQ(access->role(), QAccessible::Graphic);
    const auto description = [access] { return access->text(QAccessible::Description); };
    EXPECT_EQ(description(), QStringLiteral("Drop a video here, or choose Open"));
    m_view.setImage(plainPicture(40, 30));
    m_view.setImageWords(QStringLiteral("clip.mp4"), QStringLiteral("turned left"));
    EXPECT_EQ(description(), QStringLiteral("clip.mp4, turned left"));
    m_view.setImageWords(m_view.imageName(), QStringLiteral("turned right"));
    EXPECT_EQ(description(), QStringLiteral("clip.mp4, turned right"));
    m_view.setImageWords(m_view.imageName(), QString());
    EXPECT_EQ(description(), QStringLiteral("clip.mp4"));
    m_view.setImage(QImage());
    EXPECT_EQ(description(), QStringLiteral("Drop a video here, or choose Open"));
}

TEST_F(ImageViewTest, aKindOfImageViewIsAPictureToo)
{
    ImageViewOfAKind view;
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&view)->role(), QAccessible::Graphic);
}

TEST_F(ImageViewTest, takesTheKeyboardByTabAlone)
{
    EXPECT_EQ(m_view.focusPolicy(), Qt::TabFocus);
}

TEST_F(ImageViewTest, reportsAClickWhileItIsEmpty)
{
    QSignalSpy clicks(&m_view, &ImageView::emptyViewClicked);
    QTest::mouseClick(&m_view, Qt::LeftButton);
    EXPECT_EQ(clicks.count(), 1);
    EXPECT_EQ(m_view.cursor().shape(), Qt::PointingHandCursor);
    m_view.setImage(plainPicture(40, 30));
    QTest::mouseClick(&m_view, Qt::LeftButton);
    EXPECT_EQ(clicks.count(), 1);
    EXPECT_EQ(m_view.cursor().shape(), Qt::ArrowCursor);
}

TEST_F(ImageViewTest, aPressAndAReleaseThatAreNoClickAreNotReported)
{
    QSignalSpy clicks(&m_view, &ImageView::emptyViewClicked);
    QTest::mouseClick(&m_view, Qt::RightButton);
    QTest::mouseRelease(&m_view, Qt::LeftButton); // the button was pressed elsewhere
    QTest::mousePress(&m_view, Qt::LeftButton);
    QTest::mouseRelease(&m_view, Qt::LeftButton, {}, QPoint(-20, 20));
    QTest::mousePress(&m_view, Qt::LeftButton);
    m_view.setImage(plainPicture(40, 30));
    QTest::mouseRelease(&m_view, Qt::LeftButton);
    m_view.setImage(QImage());
    QTest::mousePress(&m_view, Qt::LeftButton);
    QEvent blocked(QEvent::WindowBlocked);
    QCoreApplication::sendEvent(&m_view, &blocked);
    QTest::mouseRelease(&m_view, Qt::LeftButton);
    EXPECT_EQ(clicks.count(), 0);
}

TEST_F(ImageViewTest, itsHintsLeaveRoomForTheInvitation)
{
    EXPECT_GE(m_view.minimumSizeHint().width(), m_view.fontMetrics().horizontalAdvance(m_view.emptyHint()));
    const int earlier = m_view.minimumSizeHint().width();
    m_view.setEmptyHint(QStringLiteral("a hint that is a good deal longer than the one before it was"));
    EXPECT_GT(m_view.minimumSizeHint().width(), earlier);
    EXPECT_EQ(m_view.sizeHint(), m_view.sizeHint().expandedTo(m_view.minimumSizeHint()));
}

} // namespace tarnwell::test

#include "ImageViewTest.moc"
