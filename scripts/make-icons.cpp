// Paints Velmora's icons and splash picture and saves them as PNG files under the folder given
// on the command line (assets/icons). Flat colours, drawn on the pixel grid of each size, so that
// the small icons stay sharp. Run through scripts/make-icons.sh.

#include <QDir>
#include <QFileInfo>
#include <QFont>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <cmath>
#include <cstdio>
#include <functional>

namespace {

namespace colour {
const QColor folder("#f2c14e");
const QColor folderBack("#dea43a");
const QColor folderFront("#f8d87f");
const QColor folderEdge("#a5741a");
const QColor folderShine("#fbe4a4");
const QColor disc("#d9dfe6");
const QColor discSheen("#f5f8fb");
const QColor discBlue("#cfe2f6");
const QColor discRose("#f3dbe8");
const QColor discClamp("#b4bfcb");
const QColor discEdge("#6f7d8b");
const QColor lens("#d6ecff");
const QColor steel("#46515c");
const QColor navy("#1e3a5f");
const QColor blue("#2f7cd3");
const QColor sky("#4fa3e0");
const QColor green("#3fa34d");
const QColor red("#d9443b");
const QColor amber("#f4b400");
const QColor cream("#fef8e0");
const QColor beige("#e9e2cf");
const QColor beigeEdge("#8c8570");
const QColor white(Qt::white);
}  // namespace colour

using Painting = std::function<void(QPainter&)>;

QImage Paint(int width, int height, const Painting& painting) {
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painting(painter);
    return image;
}

void Save(const QImage& image, const QString& path) {
    QDir().mkpath(QFileInfo(path).path());
    if (!image.save(path, "PNG")) std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
}

QPen Edge(const QColor& colour, qreal width = 1.0) {
    QPen pen(colour, width);
    pen.setJoinStyle(Qt::RoundJoin);
    pen.setCapStyle(Qt::RoundCap);
    return pen;
}

// Shapes in the 16-unit grid of the small icons; bigger pictures scale the painter.

void ClosedFolder(QPainter& p) {
    p.setPen(Edge(colour::folderEdge));
    p.setBrush(colour::folderBack);
    p.drawRoundedRect(QRectF(1.5, 2.5, 6, 3), 1, 1);
    p.setBrush(colour::folder);
    p.drawRoundedRect(QRectF(1.5, 4.5, 13, 9), 1, 1);
    p.setPen(Edge(colour::folderShine));
    p.drawLine(QPointF(2.5, 5.5), QPointF(13.5, 5.5));
}

void OpenFolder(QPainter& p) {
    p.setPen(Edge(colour::folderEdge));
    p.setBrush(colour::folderBack);
    p.drawRoundedRect(QRectF(1.5, 2.5, 6, 3), 1, 1);
    p.drawRoundedRect(QRectF(1.5, 4.5, 12, 9), 1, 1);
    p.setBrush(colour::folderFront);
    p.drawPolygon(QPolygonF({{4.0, 7.5}, {15.5, 7.5}, {13.0, 13.5}, {1.5, 13.5}}));
}

// A disc with a real hole, so that whatever lies behind shows through it.
void Disc(QPainter& p, QPointF centre, qreal radius) {
    QPainterPath ring;
    ring.setFillRule(Qt::OddEvenFill);
    ring.addEllipse(centre, radius, radius);
    const qreal hole = radius * 0.24;
    ring.addEllipse(centre, hole, hole);

    p.save();
    p.setPen(Qt::NoPen);
    p.setBrush(colour::disc);
    p.drawPath(ring);
    p.setClipPath(ring);
    const QRectF box(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius);
    p.setBrush(colour::discSheen);
    p.drawPie(box, 45 * 16, 50 * 16);
    p.drawPie(box, 225 * 16, 50 * 16);
    p.setBrush(colour::discBlue);
    p.drawPie(box, 95 * 16, 25 * 16);
    p.setBrush(colour::discRose);
    p.drawPie(box, 275 * 16, 25 * 16);
    p.setBrush(colour::discClamp);
    p.drawEllipse(centre, radius * 0.45, radius * 0.45);
    p.restore();

    p.setBrush(Qt::NoBrush);
    p.setPen(Edge(colour::discEdge, std::max(1.0, radius / 20)));
    p.drawPath(ring);
}

void Magnifier(QPainter& p, QPointF centre, qreal radius, qreal handle) {
    const qreal reach = radius / std::sqrt(2.0);
    p.setPen(Edge(colour::steel, radius * 0.75));
    p.drawLine(centre + QPointF(reach, reach), centre + QPointF(reach + handle, reach + handle));
    p.setPen(Edge(colour::steel, radius * 0.35));
    p.setBrush(colour::lens);
    p.drawEllipse(centre, radius, radius);
    p.setPen(Edge(colour::white, radius * 0.22));
    p.drawArc(
        QRectF(centre.x() - radius * 0.6, centre.y() - radius * 0.6, radius * 1.2, radius * 1.2),
        100 * 16, 60 * 16);
}

// A round badge in the lower right corner of a 24-pixel icon.
void Badge(QPainter& p, const QColor& fill) {
    p.setPen(Edge(colour::white, 1.2));
    p.setBrush(fill);
    p.drawEllipse(QPointF(17.5, 17.5), 5.8, 5.8);
    p.setPen(Edge(colour::white, 2.0));
}

// ---- Tree icons, 16 x 16 ----

void DiscInFolder(QPainter& p) {
    Disc(p, QPointF(11.5, 11.5), 4.2);
}

void TreeIcon(QPainter& p) {
    p.setPen(Edge(colour::steel));
    p.drawLine(QPointF(4.5, 6), QPointF(4.5, 12.5));
    p.drawLine(QPointF(4.5, 8.5), QPointF(9, 8.5));
    p.drawLine(QPointF(4.5, 12.5), QPointF(9, 12.5));
    p.setPen(Edge(colour::navy));
    p.setBrush(colour::blue);
    p.drawRect(QRectF(2.5, 1.5, 4, 4));
    p.setBrush(colour::green);
    p.drawRect(QRectF(9.5, 6.5, 4, 4));
    p.setBrush(colour::amber);
    p.drawRect(QRectF(9.5, 10.5, 4, 4));
}

void TwoFolders(QPainter& p) {
    p.save();
    p.translate(3, -1);
    p.scale(0.8, 0.8);
    ClosedFolder(p);
    p.restore();
    p.save();
    p.translate(0, 4);
    p.scale(0.8, 0.8);
    ClosedFolder(p);
    p.restore();
}

// ---- List icons, 16 x 16 ----

void Notes(QPainter& p) {
    p.setPen(Qt::NoPen);
    p.setBrush(colour::blue);
    p.drawPolygon(QPolygonF({{5.6, 3.5}, {14.2, 1.5}, {14.2, 4.0}, {5.6, 6.0}}));
    p.setPen(Edge(colour::blue, 1.4));
    p.drawLine(QPointF(6.3, 4.5), QPointF(6.3, 12));
    p.drawLine(QPointF(13.5, 3), QPointF(13.5, 10.5));
    p.setPen(Qt::NoPen);
    for (const QPointF head : {QPointF(4.3, 12.3), QPointF(11.5, 10.8)}) {
        p.save();
        p.translate(head);
        p.rotate(-25);
        p.drawEllipse(QPointF(0, 0), 2.6, 1.9);
        p.restore();
    }
}

void Film(QPainter& p) {
    p.setPen(Qt::NoPen);
    p.setBrush(QColor("#3c3f44"));
    p.drawRoundedRect(QRectF(1, 2, 14, 12), 1, 1);
    p.setBrush(colour::white);
    for (int x = 0; x < 4; ++x) {
        p.drawRect(QRectF(2.5 + 3 * x, 3, 1.6, 1.4));
        p.drawRect(QRectF(2.5 + 3 * x, 11.6, 1.6, 1.4));
    }
    p.setBrush(QColor("#8ec5f0"));
    p.drawRect(QRectF(2.5, 5.5, 5, 5));
    p.drawRect(QRectF(8.5, 5.5, 5, 5));
}

void Monitor(QPainter& p) {
    p.setPen(Qt::NoPen);
    p.setBrush(colour::steel);
    p.drawRoundedRect(QRectF(1, 2, 14, 10), 1.2, 1.2);
    p.drawRect(QRectF(7, 12, 2, 1.5));
    p.drawRoundedRect(QRectF(4, 13.5, 8, 1.5), 0.6, 0.6);
    p.setBrush(colour::sky);
    p.drawRect(QRectF(2.5, 3.5, 11, 7));
    p.setBrush(QColor("#8cc8f0"));
    p.drawPolygon(QPolygonF({{2.5, 3.5}, {8, 3.5}, {2.5, 8}}));
}

void CompactComputer(QPainter& p) {
    p.setPen(Edge(colour::beigeEdge));
    p.setBrush(colour::beige);
    p.drawRoundedRect(QRectF(3.5, 1.5, 9, 13), 1.5, 1.5);
    p.setBrush(QColor("#d6cdb4"));
    p.drawRect(QRectF(3.5, 12.5, 9, 2));
    p.setPen(Qt::NoPen);
    p.setBrush(QColor("#3e4a56"));
    p.drawRoundedRect(QRectF(5, 3, 6, 5.5), 0.8, 0.8);
    p.setBrush(QColor("#9fc3dd"));
    p.drawRect(QRectF(6, 4, 2, 1));
    p.setPen(Edge(colour::steel, 0.9));
    p.drawLine(QPointF(8, 10.5), QPointF(11, 10.5));
}

void GamePad(QPainter& p) {
    QPainterPath body;
    body.addRoundedRect(QRectF(1.5, 4.5, 13, 6.5), 3.2, 3.2);
    body.addEllipse(QRectF(1.5, 6.5, 5, 7.5));
    body.addEllipse(QRectF(9.5, 6.5, 5, 7.5));
    p.setPen(Edge(QColor("#2f363d")));
    p.setBrush(QColor("#5b6670"));
    p.drawPath(body.simplified());
    p.setPen(Qt::NoPen);
    p.setBrush(colour::white);
    p.drawRect(QRectF(3, 7.1, 4, 1.4));
    p.drawRect(QRectF(4.3, 5.8, 1.4, 4));
    p.setBrush(colour::red);
    p.drawEllipse(QPointF(10.4, 8.9), 1.1, 1.1);
    p.setBrush(colour::green);
    p.drawEllipse(QPointF(12.4, 7.0), 1.1, 1.1);
}

// ---- Toolbar icons, 24 x 24 ----

void ToolbarDisc(QPainter& p) {
    Disc(p, QPointF(10.5, 10.5), 9);
}

void Plus(QPainter& p) {
    p.drawLine(QPointF(17.5, 14.5), QPointF(17.5, 20.5));
    p.drawLine(QPointF(14.5, 17.5), QPointF(20.5, 17.5));
}

void Cross(QPainter& p) {
    p.drawLine(QPointF(15.3, 15.3), QPointF(19.7, 19.7));
    p.drawLine(QPointF(19.7, 15.3), QPointF(15.3, 19.7));
}

void Pencil(QPainter& p) {
    p.save();
    p.translate(16.5, 16.5);
    p.rotate(-45);
    p.setPen(Edge(QColor("#8a5a00"), 0.8));
    p.setBrush(colour::amber);
    p.drawRect(QRectF(-5, -2, 9, 4));
    p.setBrush(QColor("#f28ca0"));
    p.drawRect(QRectF(4, -2, 2.5, 4));
    p.setBrush(QColor("#f3d9a4"));
    p.drawPolygon(QPolygonF({{-5, -2}, {-9, 0}, {-5, 2}}));
    p.setPen(Qt::NoPen);
    p.setBrush(colour::steel);
    p.drawPolygon(QPolygonF({{-7.6, -0.7}, {-9, 0}, {-7.6, 0.7}}));
    p.restore();
}

void Cylinder(QPainter& p) {
    const QColor side("#6d8fb8"), top("#a6c0de"), edge("#34506f");
    p.setPen(Edge(edge));
    p.setBrush(side);
    QPainterPath body;
    body.moveTo(4, 5.5);
    body.lineTo(4, 18.5);
    body.arcTo(QRectF(4, 15.5, 16, 6), 180, 180);
    body.lineTo(20, 5.5);
    body.closeSubpath();
    p.drawPath(body);
    p.setBrush(Qt::NoBrush);
    p.setPen(Edge(top, 1.2));
    p.drawArc(QRectF(4.6, 7.6, 14.8, 6), 190 * 16, 160 * 16);
    p.drawArc(QRectF(4.6, 11.6, 14.8, 6), 190 * 16, 160 * 16);
    p.setPen(Edge(edge));
    p.setBrush(top);
    p.drawEllipse(QRectF(4, 2.5, 16, 6));
}

void Tray(QPainter& p) {
    p.setPen(Edge(QColor("#4f5b67")));
    p.setBrush(QColor("#8a97a5"));
    p.drawPolygon(QPolygonF({{2.5, 14.5},
                             {7.5, 14.5},
                             {9, 17},
                             {15, 17},
                             {16.5, 14.5},
                             {21.5, 14.5},
                             {21.5, 21.5},
                             {2.5, 21.5}}));
}

void Arrow(QPainter& p, const QColor& fill, bool down) {
    p.save();
    if (!down) {
        p.translate(0, 18);
        p.scale(1, -1);
    }
    p.setPen(Edge(fill.darker(140)));
    p.setBrush(fill);
    p.drawPolygon(
        QPolygonF({{10, 1.5}, {14, 1.5}, {14, 8.5}, {18, 8.5}, {12, 15}, {6, 8.5}, {10, 8.5}}));
    p.restore();
}

void HelpMark(QPainter& p) {
    p.setPen(Edge(colour::navy));
    p.setBrush(colour::blue);
    p.drawEllipse(QPointF(12, 12), 10, 10);
    QFont font("DejaVu Sans", 11, QFont::Bold);
    font.setPixelSize(16);
    p.setFont(font);
    p.setPen(colour::white);
    p.drawText(QRectF(2, 2, 20, 20.5), Qt::AlignCenter, "?");
}

void Globe(QPainter& p) {
    const QPointF centre(11, 11);
    p.setPen(Edge(QColor("#1f5f8f")));
    p.setBrush(colour::sky);
    p.drawEllipse(centre, 9, 9);
    p.setBrush(Qt::NoBrush);
    p.setPen(Edge(QColor("#d8efff"), 0.9));
    p.drawEllipse(centre, 4, 9);
    p.drawLine(QPointF(11, 2), QPointF(11, 20));
    p.drawLine(QPointF(2, 11), QPointF(20, 11));
    p.drawLine(QPointF(3.5, 6.5), QPointF(18.5, 6.5));
    p.drawLine(QPointF(3.5, 15.5), QPointF(18.5, 15.5));
    Badge(p, colour::green);
    p.drawLine(QPointF(17.5, 14.3), QPointF(17.5, 20.3));
    p.drawLine(QPointF(15, 18), QPointF(17.5, 20.5));
    p.drawLine(QPointF(20, 18), QPointF(17.5, 20.5));
}

void Power(QPainter& p) {
    p.setPen(Edge(colour::red.darker(130)));
    p.setBrush(colour::red);
    p.drawEllipse(QPointF(12, 12), 10, 10);
    p.setBrush(Qt::NoBrush);
    p.setPen(Edge(colour::white, 2.4));
    p.drawArc(QRectF(6.5, 7, 11, 11), 125 * 16, 290 * 16);
    p.drawLine(QPointF(12, 5), QPointF(12, 11.5));
}

// ---- Maintenance buttons and menu pictures, 16 x 16 ----

// A list card with three rows, the thing the maintenance window's buttons change.
void ListCard(QPainter& p) {
    p.setPen(Edge(colour::beigeEdge));
    p.setBrush(colour::cream);
    p.drawRoundedRect(QRectF(1.5, 1.5, 10, 12), 1, 1);
    p.setPen(Edge(colour::steel, 1.1));
    for (const qreal y : {4.5, 7.5, 10.5}) p.drawLine(QPointF(3.5, y), QPointF(9.5, y));
}

// The 24-unit badges and marks, brought down to the 16-unit grid.
Painting Small(const Painting& painting) {
    return [painting](QPainter& p) {
        p.save();
        p.scale(16.0 / 24.0, 16.0 / 24.0);
        painting(p);
        p.restore();
    };
}

void AddBadge(QPainter& p) {
    Badge(p, colour::green);
    Plus(p);
}

void DeleteBadge(QPainter& p) {
    Badge(p, colour::red);
    Cross(p);
}

void HideBadge(QPainter& p) {
    Badge(p, colour::steel);
    p.drawLine(QPointF(14.5, 17.5), QPointF(20.5, 17.5));
}

void PropertiesCard(QPainter& p) {
    ListCard(p);
    p.setPen(Edge(colour::blue, 1.6));
    p.drawLine(QPointF(12.5, 8.5), QPointF(12.5, 14.5));
    p.setPen(Qt::NoPen);
    p.setBrush(colour::blue);
    p.drawEllipse(QPointF(12.5, 5.8), 1.1, 1.1);
}

// ---- Application icon (48 units) and splash ----

void AppPicture(QPainter& p) {
    p.setPen(Qt::NoPen);
    p.setBrush(colour::navy);
    p.drawRoundedRect(QRectF(2, 2, 44, 44), 9, 9);
    p.setBrush(colour::amber);
    p.drawRoundedRect(QRectF(2, 38, 44, 8), 4, 4);
    p.drawRect(QRectF(2, 38, 44, 4));
    Disc(p, QPointF(24, 22), 15.5);
}

void SplashPainting(QPainter& p) {
    p.fillRect(QRectF(0, 0, 400, 170), colour::navy);
    p.fillRect(QRectF(0, 170, 400, 90), colour::cream);
    p.fillRect(QRectF(0, 167, 400, 3), colour::amber);
    Disc(p, QPointF(322, 86), 62);
    QFont font("DejaVu Sans", 30, QFont::Bold);
    font.setPixelSize(44);
    p.setFont(font);
    p.setPen(colour::white);
    p.drawText(QPointF(26, 104), "Velmora");
    p.fillRect(QRectF(28, 118, 150, 3), colour::amber);
}

Painting Scaled(qreal factor, const Painting& painting) {
    return [factor, painting](QPainter& p) {
        p.scale(factor, factor);
        painting(p);
    };
}

Painting Both(const Painting& first, const Painting& second) {
    return [first, second](QPainter& p) {
        first(p);
        second(p);
    };
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: make-icons <assets/icons folder>\n");
        return 2;
    }
    const QString out = QString::fromLocal8Bit(argv[1]);

    const Painting searchBadge = [](QPainter& p) { Magnifier(p, QPointF(10.5, 10.5), 2.8, 3); };
    const Painting searchInside = [](QPainter& p) { Magnifier(p, QPointF(7.5, 9), 2.6, 2.6); };
    const QList<QPair<QString, Painting>> tree = {
        {"foldersclosed", Both(ClosedFolder, DiscInFolder)},
        {"foldersopen", Both(OpenFolder, DiscInFolder)},
        {"closefolder", ClosedFolder},
        {"openfolder", OpenFolder},
        {"searchclosed", Both(ClosedFolder, searchBadge)},
        {"searchopen", Both(OpenFolder, searchBadge)},
        {"tree", TreeIcon},
        {"folders", TwoFolders},
        {"searchinfolder", Both(ClosedFolder, searchInside)},
        {"searchinfolderopen", Both(OpenFolder, searchInside)},
    };
    for (const auto& [key, painting] : tree)
        Save(Paint(16, 16, painting), out + "/tree/" + key + ".png");

    const QList<Painting> platforms = {
        Notes,           Film,    Monitor,
        CompactComputer, GamePad, [](QPainter& p) { Disc(p, QPointF(8, 8), 7); },
    };
    for (int i = 0; i < platforms.size(); ++i)
        Save(Paint(16, 16, platforms[i]), out + QString("/platforms/platform%1.png").arg(i + 1));

    const QList<QPair<QString, Painting>> toolbar = {
        {"addcd", Both(ToolbarDisc,
                       [](QPainter& p) {
                           Badge(p, colour::green);
                           Plus(p);
                       })},
        {"modifycd", Both(ToolbarDisc, Pencil)},
        {"deletecd", Both(ToolbarDisc,
                          [](QPainter& p) {
                              Badge(p, colour::red);
                              Cross(p);
                          })},
        {"structure", Cylinder},
        {"search", [](QPainter& p) { Magnifier(p, QPointF(9.5, 9.5), 6.5, 7.5); }},
        {"import", Both(Tray, [](QPainter& p) { Arrow(p, colour::green, true); })},
        {"export", Both(Tray, [](QPainter& p) { Arrow(p, colour::blue, false); })},
        {"help", HelpMark},
        {"update", Globe},
        {"quit", Power},
    };
    for (const auto& [key, painting] : toolbar)
        Save(Paint(24, 24, painting), out + "/toolbar/" + key + ".png");

    const QList<QPair<QString, Painting>> maintenance = {
        {"add", Both(ListCard, Small(AddBadge))},
        {"rename", Both(ListCard, Small(Pencil))},
        {"delete", Both(ListCard, Small(DeleteBadge))},
    };
    for (const auto& [key, painting] : maintenance)
        Save(Paint(16, 16, painting), out + "/database/" + key + ".png");

    const QList<QPair<QString, Painting>> menu = {
        {"viewproperties", PropertiesCard},
        {"newcd", Small(toolbar[0].second)},
        {"renamecd", Small(toolbar[1].second)},
        {"deletecd", Small(toolbar[2].second)},
        {"searchcd", Small(toolbar[4].second)},
        {"maintenance", Small(Cylinder)},
        {"newfolder", Both(ClosedFolder, Small(AddBadge))},
        {"renamefolder", Both(ClosedFolder, Small(Pencil))},
        {"deletefolder", Both(ClosedFolder, Small(DeleteBadge))},
        {"hidefolder", Both(ClosedFolder, Small(HideBadge))},
    };
    for (const auto& [key, painting] : menu)
        Save(Paint(16, 16, painting), out + "/menu/" + key + ".png");

    Save(Paint(48, 48, AppPicture), out + "/app/48/velmora.png");
    Save(Paint(256, 256, Scaled(256.0 / 48.0, AppPicture)), out + "/app/256/velmora.png");
    Save(Paint(400, 260, SplashPainting), out + "/splash.png");
    return 0;
}
