#ifndef KYSOCMANAGER_H
#define KYSOCMANAGER_H

/** Registers of the FPGA side of the system-on-chip; implemented in libKySoC.so.1. */
class KySocManager
{
public:
    KySocManager();
    virtual ~KySocManager();
    KySocManager(const KySocManager &) = delete;
    KySocManager &operator=(const KySocManager &) = delete;

    /** Opens the serial bus to the registers; 0 on success. */
    int initSPI();

    /** Reads register @p reg into @p value; 0 on success. */
    int getSoCRegister(unsigned short reg, unsigned int *value);

private:
    void *m_handle;
};

#endif
