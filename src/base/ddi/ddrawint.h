#pragma once

// winddi.h names these DirectDraw types in prototypes that a printer driver never uses.
typedef struct DD_HALINFO DD_HALINFO;
typedef struct DD_CALLBACKS DD_CALLBACKS;
typedef struct DD_SURFACECALLBACKS DD_SURFACECALLBACKS;
typedef struct DD_PALETTECALLBACKS DD_PALETTECALLBACKS;
typedef struct DD_DIRECTDRAW_GLOBAL DD_DIRECTDRAW_GLOBAL;
typedef struct DD_SURFACE_LOCAL DD_SURFACE_LOCAL, *PDD_SURFACE_LOCAL;
typedef struct VIDEOMEMORY VIDEOMEMORY;
