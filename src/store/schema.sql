-- The template catalogue: seven tables, their relations and the rows a new user starts with.
-- Text widths are declared as TEXT(n); the store reads them back as the fields' sizes and the
-- named CHECK constraints make it refuse longer text, as the program expects of its catalogue.
-- The number columns of title that the CD players' imports leave alone default to 0, as a new
-- Number field does in Access, so that every title has a rating for the HTML page to add up.
-- Text compares as Jet compares it (JETTEXT, which the program registers on every connection):
-- without regard to case, accented letters beside their base letters.

CREATE TABLE platform (
    idplatform INTEGER PRIMARY KEY AUTOINCREMENT,
    nmplatform TEXT(50) COLLATE JETTEXT CONSTRAINT width_nmplatform CHECK (length(nmplatform) <= 50),
    visible BOOLEAN NOT NULL DEFAULT 1
);

CREATE TABLE type (
    idtype INTEGER PRIMARY KEY AUTOINCREMENT,
    nmtype TEXT(50) COLLATE JETTEXT CONSTRAINT width_nmtype CHECK (length(nmtype) <= 50),
    idplatform INTEGER REFERENCES platform (idplatform) ON DELETE CASCADE
);

CREATE TABLE specific (
    idspecific INTEGER PRIMARY KEY AUTOINCREMENT,
    nmspecific TEXT(50) COLLATE JETTEXT CONSTRAINT width_nmspecific CHECK (length(nmspecific) <= 50),
    idtype INTEGER REFERENCES type (idtype) ON DELETE CASCADE
);

CREATE TABLE vendor (
    idvendor INTEGER PRIMARY KEY AUTOINCREMENT,
    nmvendor TEXT(100) COLLATE JETTEXT CONSTRAINT width_nmvendor CHECK (length(nmvendor) <= 100),
    idplatform INTEGER REFERENCES platform (idplatform) ON DELETE CASCADE
);

CREATE TABLE mediatype (
    idmediatype INTEGER PRIMARY KEY AUTOINCREMENT,
    nmmediatype TEXT(50) COLLATE JETTEXT CONSTRAINT width_nmmediatype CHECK (length(nmmediatype) <= 50),
    iddevicetype INTEGER
);

CREATE TABLE title (
    idcd INTEGER PRIMARY KEY AUTOINCREMENT,
    nmcd TEXT(150) COLLATE JETTEXT CONSTRAINT width_nmcd CHECK (length(nmcd) <= 150),
    nrcds SMALLINT CONSTRAINT range_nrcds CHECK (nrcds BETWEEN -32768 AND 32767),
    idvendor INTEGER REFERENCES vendor (idvendor) ON DELETE CASCADE,
    idplatform INTEGER REFERENCES platform (idplatform) ON DELETE CASCADE,
    idtype INTEGER REFERENCES type (idtype) ON DELETE CASCADE,
    idspecific INTEGER REFERENCES specific (idspecific) ON DELETE CASCADE,
    idmediatype INTEGER REFERENCES mediatype (idmediatype) ON DELETE CASCADE,
    iddevicetype INTEGER DEFAULT 0,
    idfilesystem INTEGER DEFAULT 0,
    capacity DOUBLE DEFAULT 0,
    freespace DOUBLE DEFAULT 0,
    label TEXT(32) COLLATE JETTEXT CONSTRAINT width_label CHECK (length(label) <= 32),
    rating SMALLINT DEFAULT 0 CONSTRAINT range_rating CHECK (rating BETWEEN -32768 AND 32767),
    listing LONGTEXT COLLATE JETTEXT,
    TitleID INTEGER UNIQUE,
    NumTracks BYTE CONSTRAINT range_NumTracks CHECK (NumTracks BETWEEN 0 AND 255),
    memo LONGTEXT COLLATE JETTEXT,
    created DATE,
    modified DATE,
    price DOUBLE DEFAULT 0,
    visible BOOLEAN DEFAULT 1
);

CREATE TABLE Tracks (
    idcd INTEGER REFERENCES title (idcd) ON DELETE CASCADE,
    TrackID BYTE CONSTRAINT range_TrackID CHECK (TrackID BETWEEN 0 AND 255),
    TrackName TEXT(150) COLLATE JETTEXT CONSTRAINT width_TrackName CHECK (length(TrackName) <= 150)
);

CREATE INDEX title_by_platform ON title (idplatform, nmcd);
-- The Deluxe import asks for the newest audio title after each one it adds.
CREATE INDEX title_newest_by_platform ON title (idplatform, idcd);
CREATE INDEX title_by_type ON title (idtype);
CREATE INDEX title_by_vendor ON title (idvendor);
CREATE INDEX title_by_specific ON title (idspecific);
CREATE INDEX title_by_mediatype ON title (idmediatype);
CREATE INDEX tracks_by_title ON Tracks (idcd, TrackID);
CREATE INDEX type_by_platform ON type (idplatform);
CREATE INDEX specific_by_type ON specific (idtype);
CREATE INDEX vendor_by_platform ON vendor (idplatform, nmvendor);

-- Platforms 1 to 5 belong to the program: 1 is audio, 3 the PC whose listing is exported.
INSERT INTO platform (idplatform, nmplatform, visible) VALUES
    (1, 'Audio', 1), (2, 'Video', 1), (3, 'PC', 1), (4, 'Macintosh', 1), (5, 'Game console', 1);

INSERT INTO type (idtype, nmtype, idplatform) VALUES
    (1, 'Pop', 1), (2, 'Rock', 1), (3, 'Classical', 1), (4, 'Jazz', 1), (5, 'Soundtrack', 1),
    (6, 'Compilation', 1),
    (7, 'Movie', 2), (8, 'Documentary', 2), (9, 'Concert', 2),
    (10, 'Games', 3), (11, 'Applications', 3), (12, 'Utilities', 3), (13, 'Education', 3),
    (14, 'Backup', 3),
    (15, 'Games', 4), (16, 'Applications', 4),
    (17, 'Games', 5);

INSERT INTO specific (nmspecific, idtype) VALUES
    ('Album', 1), ('Single', 1), ('Live', 1),
    ('Album', 2), ('Single', 2), ('Live', 2),
    ('Symphony', 3), ('Opera', 3), ('Chamber music', 3),
    ('Album', 4), ('Live', 4),
    ('Film score', 5), ('Game music', 5),
    ('Various artists', 6), ('Best of', 6),
    ('Feature film', 7), ('Animation', 7),
    ('Nature', 8), ('History', 8),
    ('Live recording', 9),
    ('Action', 10), ('Adventure', 10), ('Strategy', 10), ('Simulation', 10),
    ('Office', 11), ('Graphics', 11), ('Development', 11), ('Multimedia', 11),
    ('Disk tools', 12), ('Drivers', 12),
    ('Languages', 13), ('Reference', 13),
    ('Documents', 14), ('Photos', 14), ('System', 14),
    ('Action', 15), ('Adventure', 15),
    ('Office', 16), ('Graphics', 16),
    ('Action', 17), ('Racing', 17), ('Sports', 17);

INSERT INTO vendor (nmvendor, idplatform) VALUES
    ('Various artists', 1), ('Unknown artist', 1),
    ('Unknown studio', 2),
    ('Unknown vendor', 3), ('Own backup', 3),
    ('Unknown vendor', 4),
    ('Unknown vendor', 5);

-- Mediatype 1 is the default of imported titles.
INSERT INTO mediatype (idmediatype, nmmediatype, iddevicetype) VALUES
    (1, 'CD-ROM', 1), (2, 'CD-R', 1), (3, 'CD-RW', 1), (4, 'DVD-ROM', 1), (5, 'DVD-R', 1),
    (6, 'DVD+RW', 1);
