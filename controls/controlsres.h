#pragma once

/* Images of the module's buttons: resources of the type VELIMAGE. */

#define IDR_IMAGE_TYPE "VELIMAGE"

#define IDR_IMAGE_OK 1
#define IDR_IMAGE_CANCEL 2
#define IDR_IMAGE_DISABLED 9304
#define IDR_IMAGE_HELP 9305
#define IDR_IMAGE_UP 9516
#define IDR_IMAGE_DOWN 9517
