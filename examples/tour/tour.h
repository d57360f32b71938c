// The tour's chapters, one per subsystem; main runs them in order.
#ifndef OBRIX_EXAMPLES_TOUR_TOUR_H
#define OBRIX_EXAMPLES_TOUR_TOUR_H

void tourDiagnostics();    // status texts, structures, registration tables
void tourContainers();     // intrusive lists, AVL trees
void tourGeometry();       // points, matrices, rotations about a pivot
void tourNumerics();       // vectors, slices, matrices
void tourFactorisations(); // least-squares fit
void tourUndo();           // undo commands and redraw requests
void tourMemory();         // accounted memory by call site, scratch memory, fonts and titles
void tourTrace();          // the trace ring, read back as after a crash
void tourFileCache();      // two processes sharing a cached file
/// The second process of the file cache chapter: finds `key` in the cache at `directory`.
int tourFileCacheReader(const char* directory, const char* key);
void tourWarnings();  // a warning answered by a script
void tourFiles();     // project directories, an image sequence on disk
void tourDebugDraw(); // a surface, a curve and labelled points drawn for a browser

/// Prints a chapter heading.
void tourHeading(const char* title);

#endif
