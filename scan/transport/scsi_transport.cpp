// The SCSI primitives arrive here.
