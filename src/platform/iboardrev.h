#ifndef IBOARDREV_H
#define IBOARDREV_H

/** Brand number of the instrument, as its identification record holds it (0 to 255). */
enum e_brand : unsigned int {};

/** The board library's number of an instrument model (0 to 3). */
enum e_model : unsigned int {};

/** The parts of the board that have a revision of their own. */
enum e_device : unsigned int {
    DEVICE_SOM = 0,
    DEVICE_HPS = 1,
    DEVICE_FPGA = 2,
    DEVICE_MESURE_CARD = 3,
};

/** The board's revisions. Every operation returns 0 on success. */
class IBoardRev
{
public:
    virtual ~IBoardRev() = default;

    /** Passes the instrument's brand to the library. */
    virtual int setBrand(e_brand brand) = 0;

    /** Passes the instrument's model to the library. */
    virtual int setModel(e_model model) = 0;

    /** Reads the revision of @p device into @p revision. */
    virtual int getRevision(e_device device, unsigned int *revision) = 0;

    /** Passes the revision of the system-on-module to the library. */
    virtual int setSoMRevision(unsigned int revision) = 0;
};

#endif
