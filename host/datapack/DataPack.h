#pragma once
// Loads a data pack (category catalog, drop-down lists, project file, profile folder) into a
// HostData, so that a shell can play the host application on it. The format is described in
// docs/data-pack.md.

#include "host/HostData.h"
#include "platform/CString.h"

struct DataPackOptions {
    CString dataDir;     // the pack's folder; empty: the per-user copy of the bundled pack
    CString projectFile; // empty: the single *.kprj under <pack>/project
    CString configDir;   // empty: <pack>/profile; created and seeded when it doesn't exist
};

// The bundled pack: <prefix>/share/koqdde/sample beside an installed program, else the
// source tree's.
CString BundledPackDir();
// $XDG_DATA_HOME/koqdde/sample, else $HOME/.local/share/koqdde/sample; empty when neither
// variable is set.
CString PerUserPackDir();

// Resolves the options and loads the pack into out (which is replaced as a whole only on
// success). On failure returns false with a one-line error naming the file and the fault.
bool LoadDataPack(const DataPackOptions& options, HostData& out, CString& error);

// The pieces LoadDataPack is made of, each usable alone. Every one names the file in its error.

// Fills out.catalog and out.profile.version from a catalog.xml.
bool LoadCatalogFile(const CString& path, HostData& out, CString& error);
// Fills out.dropLists from a droplists.xml.
bool LoadDropListsFile(const CString& path, HostData& out, CString& error);
// Fills out.project from a project file; its specialty must be in out.catalog, so load the
// catalog first.
bool LoadProjectFile(const CString& path, HostData& out, CString& error);
// Every drop key of out.catalog names a list of out.dropLists; catalogPath names the file in
// the error.
bool CheckDropKeys(const HostData& data, const CString& catalogPath, CString& error);

// Copies the folder tree from into to when to doesn't exist yet; leaves an existing folder
// alone. The copy is made beside the target and renamed into place, so an interrupted first
// run never leaves half a pack behind.
bool EnsurePackCopy(const CString& from, const CString& to, CString& error);
// Copies into to every file and folder of from that to lacks, leaving what is there alone: a
// per-user copy made by an earlier version gains what the bundled pack has added since.
bool AddMissingPackFiles(const CString& from, const CString& to, CString& error);
// Builds the databases of <pack>/libraries and the project's history (<project>.history.sql
// beside the project file) where they are missing or older than their sources, and lists them
// in out. They are built beside their sources, but those of the bundled pack in the source
// tree go to the build tree, and those of a pack the user can't write into (an installed one)
// to $XDG_CACHE_HOME/koqdde/packs/<hash of its path> (else ~/.cache/...). A pack without
// libraries/schema.sql has no libraries.
bool LoadLibraries(const CString& packDir, const CString& projectFile, HostData& out,
                   CString& error);
// Creates configDir when it doesn't exist and seeds it with the files of profileDir; an
// existing folder is left as it is.
bool PrepareConfigDir(const CString& configDir, const CString& profileDir, CString& error);
