#pragma once

/// The codes that hosts pass to the exported functions; plain C++ so that rules and tests can use them too.

/// What the archive dialog is opened for, and what the user chose in it.
enum ARCHIVE_OP : int
{
    ARCHIVE_OP_LOAD = 0,     ///< load a patient from an archive file
    ARCHIVE_OP_SAVE = 1,     ///< save the selected patients to archive files
    ARCHIVE_OP_MERGE = 2,    ///< merge timepoints from an archive file into the selected patient
    ARCHIVE_OP_UPLOAD = 3,   ///< save the selected patients to the internet service
    ARCHIVE_OP_DOWNLOAD = 4, ///< get a patient from the internet service
};

/// What the rename dialog was confirmed for.
enum RENAME_OP : int
{
    RENAME_PATIENT = 0,
    RENAME_TIMEPOINT = 1,
};

/// What the delete dialog was left on; the index of its selected radio button.
enum DELETE_OP : unsigned int
{
    DELETE_TIMEPOINT_IMAGES = 0,
    DELETE_TIMEPOINT = 1,
    DELETE_PATIENT = 2,
};

/// The stored keyword lists.
enum INI_LIST : int
{
    INI_LIST_PATIENT = 0,
    INI_LIST_IMAGE = 1,
};

/// How the two names of a person are joined. NAMEORDER_FIRST_LAST defers to the user's setting, like the
/// default: hosts rely on it. Any value beyond these three gives the given name first.
enum NAMEORDER : int
{
    NAMEORDER_DEFAULT = 0,
    NAMEORDER_FIRST_LAST = 1,
    NAMEORDER_LAST_FIRST = 2,
};

/// Posted by the archive operations to the window that was given as the parent of ArchiveDlg, once for every
/// patient that an operation has changed. wParam is an ARCHIVE_NOTIFY. lParam is a char*: the patient's GUID,
/// terminated by a zero byte, in a block from new char[] that the host takes over and frees with delete[]
/// (module and host share one C++ runtime library). A host that no longer reads its messages leaks the block.
constexpr unsigned int VELDLGS_PATIENT_CHANGED = 1137;

/// What has happened to the patient. ARCHIVE_NOTIFY_REFRESH: a load has finished its work on the patient's
/// files, read everything shown of it again.
enum ARCHIVE_NOTIFY : int
{
    ARCHIVE_NOTIFY_LOADED = 1,
    ARCHIVE_NOTIFY_REMOVED = 2,
    ARCHIVE_NOTIFY_MERGED = 3,
    ARCHIVE_NOTIFY_REFRESH = 4,
};
