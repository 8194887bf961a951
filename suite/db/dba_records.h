#pragma once
// The records of the production database: who works, on which job, scene and
// element, and the cels (drawings) of an element.
#include <QString>
#include <QtGlobal>

// Kinds of users. The station offers every kind except the vectorize service.
enum dba_userType_types {
    DBA_USER_ADMINISTRATOR = 0,
    DBA_USER_SUPERVISOR = 1,
    DBA_USER_ANIMATOR = 2,
    DBA_USER_SCANNER_OPERATOR = 3,
    DBA_USER_INK_AND_PAINT = 4,
    DBA_USER_CHECKER = 5,
    DBA_USER_COMPOSITOR = 6,
    DBA_USER_DIRECTOR = 7,
    DBA_USER_VECTORIZE_SERVICE = 8,
    DBA_USER_GUEST = 9,
};

// How an element's drawings are scanned. Note that this runs the other way
// round from the scan depth of a drawing (0 black and white ... 2 colour).
enum LMV_element_scan_type {
    LMV_SCAN_COLOUR = 0,
    LMV_SCAN_GREY = 1,
    LMV_SCAN_BW = 2,
    LMV_SCAN_UNSUPPORTED = 3,  // a type this station cannot scan
    LMV_SCAN_NONE = 4,
};

// What an element wants done with its scans: 0 nothing, 1 Vectorize, any
// other value Pix2vec.
enum LMV_vectorize_kind {
    LMV_VECTORIZE_NONE = 0,
    LMV_VECTORIZE = 1,
    LMV_PIX2VEC = 2,
};

struct dba_user_struct {
    qint64 id = 0;
    QString name;
    int type = DBA_USER_SCANNER_OPERATOR;  // dba_userType_types
};

struct dba_job_struct {
    qint64 id = 0;
    QString environment;
    QString name;
    int pixelShape = 1;  // the job's default pixel shape
};

struct dba_scene_struct {
    qint32 id = 0;
    qint64 jobId = 0;
    QString jobName;
    QString name;
    QString path;       // as stored; DBA_Path::getScenePath makes it usable
    qint64 version = 1; // raised on each change of the scene's cels
};

struct LMV_element_data {
    qint64 id = 0;
    qint32 sceneId = 0;
    QString name;
    QString path;  // relative to the scene's path
    int scanType = LMV_SCAN_NONE;             // LMV_element_scan_type
    int needsVectorization = LMV_VECTORIZE_NONE;  // LMV_vectorize_kind
    bool usesPixmap = false;
    int pf = 24;            // the file kind of the element's scans
    double fieldChart = 12; // 12 or 16
    int pixelShape = 1;
};

// How far a cel has come (its processed stage). The station marks a scanned
// drawing with stage 1; the vectorize worker marks the drawing whose vector
// drawing it wrote with stage 2. Status 0 is success, the only one sent.
enum dba_celStage {
    DBA_CEL_SCANNED = 1,
    DBA_CEL_VECTORIZED = 2,
};

// One cel of an element. A cel that has versions is known by its name with
// the suffix of the current version appended.
struct dba_cel_struct {
    qint64 id = 0;
    qint64 elementId = 0;
    QString name;
    QString suffix;
    int versionCount = 0;
    int scanCount = 0;
    int processedStage = 0;
    int processedStatus = 0;

    QString drawingName() const { return versionCount > 0 ? name + suffix : name; }
};
