#pragma once

/// Installs the reader and the writer of all file formats in HxFileAccess. Call it once at start-up;
/// a second call changes nothing.
///
/// Reading (the content decides, not the name):
///   NRRD              images, our own label fields, and the segmentations of other programs
///   NIfTI, MetaImage  images
///   DICOM             one series: a folder or several files; unequal gaps make a stacked field
///   TIFF, PNG, JPEG, BMP  one file (all pages of a TIFF), or one slice per file: several files, or a
///                     folder, in natural order of their names
/// Voxels are never resampled or reordered: how their axes lie in the patient is kept beside them
/// (HxOrientation), and a save writes it back.
///
/// Writing, by the suffix: .nrrd, .seg.nrrd, .nii, .nii.gz, .mha, .mhd, .tif, .tiff; without one NRRD.
/// What a format cannot carry is named in one console line.
///
/// Every failure is one sentence that names the file and the reason. A failed load leaves no object, a
/// failed save leaves the old file as it was.
void hxRegisterFileFormats();
