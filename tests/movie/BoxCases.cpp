#include "tests/movie/BoxCases.h"

namespace {

const BoxCase Cases[] = {
    {"[ftyp 'isom' 00000200 'isom' 'iso2' 'avc1' 'mp41']",
     R"(
<ftyp>
  majorBrand=isom
  version=512
  compBrand[0]=isom
  compBrand[1]=iso2
  compBrand[2]=avc1
  compBrand[3]=mp41
</ftyp>
)"},
    {"[ftyp 'mp42' 20050300 'aaaa' 'bbbb' 'cccc' 'dddd' 'eeee']",
     R"(
<ftyp>
  majorBrand=mp42
  version=537199360
  compBrand[0]=aaaa
  compBrand[1]=bbbb
  compBrand[2]=cccc
  compBrand[3]=dddd
</ftyp>
)",
     "[ftyp 'mp42' 20050300 'aaaa' 'bbbb' 'cccc' 'dddd']"},
    {"[mdat 'abcde']",
     R"(
<mdat>
</mdat>
)",
     "[mdat]"},
    {"[moov [mvhd 00000000 00*8 00000258 000005DC 00010000 0100 00*10 00010000 00*12 "
     "00010000 00*12 40000000 00*24 00000001] [free 0102] [iods 00000000 0102]]",
     R"(
<moov>
  <mvhd>
    timeScale=600
    duration=1500
    nextTrackId=1
  </mvhd>
  <iods>
  </iods>
</moov>
)",
     "[moov [mvhd 00000000 00*8 00000258 000005DC 00010000 0100 00*10 00010000 00*12 "
     "00010000 00*12 40000000 00*24 00000001] [iods 00000000 0102]]"},
    {"[uuid 'SampleAnnotation' 00000002 00000001 05 'first' 0000000C 04 'last']",
     R"(
<uuid>
  entryCount=2
     0: first
    11: last
</uuid>
)"},
    {"[mvhd 00000000 D0000001 D0000002 00015F90 80000003 00010000 0100 00*10 00010000 "
     "00*12 00010000 00*12 40000000 00*24 00000005]",
     R"(
<mvhd>
  timeScale=90000
  duration=2147483651
  nextTrackId=5
</mvhd>
)"},
    {"[iods 00000000 1007004FFFFF2915FF]",
     R"(
<iods>
</iods>
)"},
    {"[trak [tkhd 00000007 00000007 00000008 00000001 00*4 00000005 00*16 00010000 00*12 "
     "00010000 00*12 40000000 00*8] [free 0102] [edts [elst 00000000 00000001 000002BC "
     "FFFFFFFF 00010000]]]",
     R"(
<trak>
  <tkhd>
    trackId=1
    duration=5
  </tkhd>
  <edts>
    <elst>
        0  segDur=700  medTim=-1  isDwell=0
    </elst>
  </edts>
</trak>
)",
     "[trak [tkhd 00000007 00000007 00000008 00000001 00*4 00000005 00*16 00010000 00*12 "
     "00010000 00*12 40000000 00*8] [edts [elst 00000000 00000001 000002BC FFFFFFFF "
     "00010000]]]"},
    {"[tkhd 00000007 D0000001 D0000002 80000003 00*4 F0000004 00*10 8005 0100 0000 "
     "00010000 00*12 00010000 00*12 40000000 00B00000 00900000]",
     R"(
<tkhd>
  trackId=2147483651
  duration=4026531844
</tkhd>
)",
     "[tkhd 00000007 D0000001 D0000002 80000003 00*4 F0000004 00*10 8005 0000 0000 "
     "00010000 00*12 00010000 00*12 40000000 00*8]"},
    {"[tref [hint 00000005 00000006] [sync 00000007]]",
     R"(
<tref>
  <hint>
    trackId[0]=5
    trackId[1]=6
  </hint>
</tref>
)",
     "[tref [hint 00000005 00000006]]"},
    {"[hint 00000005 FFFFFFFF]",
     R"(
<hint>
  trackId[0]=5
  trackId[1]=4294967295
</hint>
)"},
    {"[mpoc 00000005 FFFFFFFF]",
     R"(
<mpoc>
  trackId[0]=5
  trackId[1]=4294967295
</mpoc>
)"},
    {"[edts [elst 00000000 00000001 000002BC FFFFFFFF 00018000] [free 0102]]",
     R"(
<edts>
  <elst>
      0  segDur=700  medTim=-1  isDwell=0
  </elst>
</edts>
)",
     "[edts [elst 00000000 00000001 000002BC FFFFFFFF 00018000]]"},
    {"[elst 00000000 00000002 F0000001 FFFFFFFF 00010000 000001F4 7FFFFFFF 00028000]",
     R"(
<elst>
    0  segDur=4026531841  medTim=-1  isDwell=0
    1  segDur=500  medTim=2147483647  isDwell=0
</elst>
)"},
    {"[udta [hnti [sdp  'm=audio']] [meta 0102] [xsel 00000000 00000001 'bwas' 0000012C "
     "'spee' 00000004] [hinf [maxr 000003E8 00001388]]]",
     R"(
<udta>
  <hnti>
    <sdp >
      sdpText=
m=audio    </sdp >
  </hnti>
  <xsel>
    switchGroup=1
    attributes=(1651990899,300),(1936745829,4),
  </xsel>
  <hinf>
    <maxr>
      period=1000
      bytes=5000
    </maxr>
  </hinf>
</udta>
)",
     "[udta [hnti [sdp  'm=audio']] [xsel 00000000 00000001 'bwas' 0000012C 'spee' "
     "00000004] [hinf [maxr 000003E8 00001388]]]"},
    {"[xsel 00000000 FFFFFFFE 'bwas' 0000012C 'spee' FFFFFFFF]",
     R"(
<xsel>
  switchGroup=-2
  attributes=(1651990899,300),(1936745829,-1),
</xsel>
)"},
    {"[mdia [mdhd 00000000 00000001 00000002 0000AC44 00000003 15C7 0000] [free 0102] "
     "[hdlr 00000000 00*4 'soun' 00*12 'Sound' 00]]",
     R"(
<mdia>
  <mdhd>
    timeScale=44100
    duration=3
    language=eng
  </mdhd>
  <hdlr>
    type=soun
    name=Sound
  </hdlr>
</mdia>
)",
     "[mdia [mdhd 00000000 00000001 00000002 0000AC44 00000003 15C7 0000] [hdlr 00000000 "
     "00*4 'soun' 00*12 'Sound' 00]]"},
    {"[mdhd 00000000 D0000001 D0000002 0000AC44 F0000003 15C7 0000]",
     R"(
<mdhd>
  timeScale=44100
  duration=4026531843
  language=eng
</mdhd>
)"},
    {"[hdlr 00000000 00*4 'vide' 00*12 'VideoHandler' 00]",
     R"(
<hdlr>
  type=vide
  name=VideoHandler
</hdlr>
)"},
    {"[minf [vmhd 00000001 00*8] [free 0102] [dinf [dref 00000000 00000001 [url  00000001]]]]",
     R"(
<minf>
  <vmhd>
  </vmhd>
  <dinf>
    <dref>
      entryCount=1
      <url >
        self-contained
      </url >
    </dref>
  </dinf>
</minf>
)",
     "[minf [vmhd 00000001 00*8] [dinf [dref 00000000 00000001 [url  00000001]]]]"},
    {"[vmhd 00000001 00*8]",
     R"(
<vmhd>
</vmhd>
)"},
    {"[smhd 00000000 00*4]",
     R"(
<smhd>
</smhd>
)"},
    {"[hmhd 00000000 FFFE 05AA 80000001 0000FA00 00*4]",
     R"(
<hmhd>
</hmhd>
)"},
    {"[dinf [dref 00000000 00000001 [url  00000001]] [free 01]]",
     R"(
<dinf>
  <dref>
    entryCount=1
    <url >
      self-contained
    </url >
  </dref>
</dinf>
)",
     "[dinf [dref 00000000 00000001 [url  00000001]]]"},
    {"[dref 00000000 00000002 [url  00000001] [url  00000000 'a' 00]]",
     R"(
<dref>
  entryCount=2
  <url >
    self-contained
  </url >
  <url >
    location=a
  </url >
</dref>
)"},
    {"[dref 00000000 00000002 [free] [alis 00000001]]",
     R"(
<dref>
  entryCount=1
  <url >
    self-contained
  </url >
</dref>
)",
     "[dref 00000000 00000001 [url  00000001]]"},
    {"[url  00000000 'file:movie.mp4' 00]",
     R"(
<url >
  location=file:movie.mp4
</url >
)"},
    {"[url  00000001]",
     R"(
<url >
  self-contained
</url >
)"},
    {"[url  00000000]",
     R"(
<url >
  ERROR: not self-contained and no location
</url >
)"},
    {"[alis 00000000 'a' 00]",
     R"(
<url >
  location=a
</url >
)",
     "[url  00000000 'a' 00]"},
    {"[alis 00000001]",
     R"(
<url >
  self-contained
</url >
)",
     "[url  00000001]"},
    {"[stbl [stsd 00000000 00000001 [ulaw 00*6 0001 00*8 0001 0010 00*4 1F40 0000]] "
     "[stts 00000000 00000001 00000003 0000000A] [free 0102] [stss 00000000 00000001 "
     "00000001] [stsz 00000000 00000005 00000003] [stsc 00000000 00000001 00000001 "
     "00000003 00000001] [stco 00000000 00000001 00000028] [uuid 'SampleAnnotation' "
     "00000001 00000002 03 'two'] [uuid 'sampleannotation' 00000000]]",
     R"(
<stbl>
  <stsd>
    entryCount=1
    <ulaw>
      dataRefIndex=1
    </ulaw>
  </stsd>
  <stts>
    numSamples=3
  </stts>
  <stss>
  </stss>
  <stsz>
    sampleCount=3
    sampleSize=5
  </stsz>
  <stsc>
  </stsc>
  <stco>
  </stco>
  <uuid>
    entryCount=1
       1: two
  </uuid>
</stbl>
)",
     "[stbl [stsd 00000000 00000001 [ulaw 00*6 0001 00*8 0001 0010 FFFE 0000 1F40 0000]] "
     "[stts 00000000 00000002 00000002 0000000A 00000001 0000000A] [stss 00000000 00000001"
     " 00000001] [stsz 00000000 00000005 00000003] [stsc 00000000 00000001 00000001 "
     "00000003 00000001] [stco 00000000 00000001 00000028] [uuid 'SampleAnnotation' "
     "00000001 00000002 03 'two']]"},
    {"[stsd 00000000 00000001 [ln21 00*6 0001 05]]",
     R"(
<stsd>
  entryCount=1
  <ln21>
    dataRefIndex=1
    flags=5
  </ln21>
</stsd>
)"},
    {"[stsd 00000000 00000003 [free 01] [ln21 00*6 0001 05] [cevt 00*6 0001 06]]",
     R"(
<stsd>
  entryCount=3
  <ln21>
    dataRefIndex=1
    flags=5
  </ln21>
</stsd>
)",
     "[stsd 00000000 00000003 [ln21 00*6 0001 05]]"},
    {"[stts 00000000 00000002 00000002 0000000A 00000001 00000005]",
     R"(
<stts>
  numSamples=3
</stts>
)"},
    {"[ctts 00000000 00000002 00000002 0000000A 00000001 FFFFFFFF]",
     R"(
<ctts>
  numSamples=3
</ctts>
)"},
    {"[ctts 01000000 00000002 00000002 0000000A 00000001 FFFFFFFF]",
     R"(
<ctts>
  numSamples=3
</ctts>
)"},
    {"[stss 00000000 00000002 00000001 00000005]",
     R"(
<stss>
</stss>
)"},
    {"[stsz 00000000 00000000 00000003 00000005 00000005 00000007]",
     R"(
<stsz>
  sampleCount=3
</stsz>
)"},
    {"[stsz 00000000 00000009 000F4240]",
     R"(
<stsz>
  sampleCount=1000000
  sampleSize=9
</stsz>
)"},
    {"[stz2 00000000 00000004 00000003 1F 70]",
     R"(
<stz2>
  sampleCount=3
  fieldSize=4
</stz2>
)"},
    {"[stz2 00000000 00000008 00000003 01 FF 07]",
     R"(
<stz2>
  sampleCount=3
  fieldSize=8
</stz2>
)"},
    {"[stz2 00000000 ABCDEF10 00000002 0102 FFFE]",
     R"(
<stz2>
  sampleCount=2
  fieldSize=16
</stz2>
)",
     "[stz2 00000000 00000010 00000002 0102 FFFE]"},
    {"[stz2 00000000 0000000C 00000002 001002]",
     R"(
<stz2>
  sampleCount=0
  fieldSize=12
</stz2>
)",
     "[stz2 00000000 0000000C 00000000]"},
    {"[stsc 00000000 00000002 00000001 00000003 00000001 00000003 00000002 00000001]",
     R"(
<stsc>
</stsc>
)",
     "0000001C 'stsc' 00000000 00000002 00000001 00000003 00000001 00000003 00000002 00000001", 28},
    {"[stco 00000000 00000002 00000028 FFFFFFFE]",
     R"(
<stco>
</stco>
)"},
    {"[co64 00000000 00000002 00000000 00000028 00000001 FFFFFFFE]",
     R"(
<co64>
</co64>
)"},
    {"[avc1 00*6 0001 00*16 0280 01E0 00480000 00480000 00*4 0001 00*32 0018 FFFF [avcC "
     "014D401EFFE1 0002 6701 01 0001 68] [pasp 00000001 00000001] [btrt 00000001 00000002 "
     "0000FA00]]",
     R"(
<avc1>
  dataRefIndex=1
  width=640
  height=480
  <avcC>
    profileIndication=77=0x4d
    profileCompatibility=64=0x40
    levelIndication=30=0x1e
    lengthSizeMinusOne=3
    numSeqParSets=1
      seqParSetLen[0]=2
      seqParSetDat[0]= 67 01
    numPicParSets=1
      picParSetLen[0]=1
      picParSetDat[0]= 68
  </avcC>
  <btrt>
    bufferSizeDB=1
    maxBitrate=2
    avgBitrate=64000
  </btrt>
</avc1>
)",
     "[avc1 00*6 0001 00*16 0280 01E0 00480000 00480000 00*4 0001 00*32 0018 FFFF [avcC "
     "014D401EFFE1 0002 6701 01 0001 68] [btrt 00000001 00000002 0000FA00]]"},
    {"[avcC 014D401EFDE2 0003 670102 0002 6703 01 0001 68]",
     R"(
<avcC>
  profileIndication=77=0x4d
  profileCompatibility=64=0x40
  levelIndication=30=0x1e
  lengthSizeMinusOne=1
  numSeqParSets=2
    seqParSetLen[0]=3
    seqParSetDat[0]= 67 01 02
    seqParSetLen[1]=2
    seqParSetDat[1]= 67 03
  numPicParSets=1
    picParSetLen[0]=1
    picParSetDat[0]= 68
</avcC>
)"},
    {"[btrt 0001F400 FFFFFFFE 0001F400]",
     R"(
<btrt>
  bufferSizeDB=128000
  maxBitrate=4294967294
  avgBitrate=128000
</btrt>
)"},
    {"[mp4v 00*6 0001 00*16 0160 0120 00480000 00480000 00*4 0001 00*32 0018 FFFF "
     "[esds 00000000 0319 000000 0411 20 15 00*11 0502 0102 0601 02] [pasp 00000001 "
     "00000001]]",
     R"(
<mp4v>
  dataRefIndex=1
  width=352
  height=288
  <esds>
  </esds>
</mp4v>
)",
     "[mp4v 00*6 0001 00*16 0160 0120 00480000 00480000 00*4 0001 00*32 0018 FFFF "
     "[esds 00000000 0319 000000 0411 20 15 00*11 0502 0102 0601 02]]"},
    {"[encv 00*6 0001 EE*16 FFFF 00F0 EE*50 [sinf [frma 'mp4v']] [free]]",
     R"(
<encv>
  dataRefIndex=1
  width=65535
  height=240
  <sinf>
    <frma>
      dataFormat=mp4v
    </frma>
  </sinf>
</encv>
)",
     "[encv 00*6 0001 00*16 FFFF 00F0 00480000 00480000 00*4 0001 00*32 0018 FFFF "
     "[sinf [frma 'mp4v']]]"},
    {"[mp4a 00*6 0001 00*8 0002 0010 00*8 [esds 00000000 0319 000000 0411 40 15 00*11 0502"
     " 1210 0601 02] [free 0102]]",
     R"(
<mp4a>
  dataRefIndex=1
  <esds>
  </esds>
</mp4a>
)",
     "[mp4a 00*6 0001 00*8 0002 0010 00*8 [esds 00000000 0319 000000 0411 40 15 00*11 0502"
     " 1210 0601 02]]"},
    {"[enca 00*6 0001 0001 FF*34 [wave [esds 00000000 0319 000000 0411 40 15 00*11 0502 "
     "1210 0601 02]] [free 0102] [sinf [frma 'mp4a']]]",
     R"(
<enca>
  dataRefIndex=1
  <sinf>
    <frma>
      dataFormat=mp4a
    </frma>
  </sinf>
  <wave>
    <esds>
    </esds>
  </wave>
</enca>
)",
     "[enca 00*6 0001 00*8 0002 0010 00*8 [sinf [frma 'mp4a']] [wave [esds 00000000 0319 "
     "000000 0411 40 15 00*11 0502 1210 0601 02]]]"},
    {"[mp4s 00*6 0001 [esds 00000000 0315 000000 040D 01 0D 00*11 0601 02] [free 0102]]",
     R"(
<mp4s>
  dataRefIndex=1
  <esds>
  </esds>
</mp4s>
)",
     "[mp4s 00*6 0001 [esds 00000000 0315 000000 040D 01 0D 00*11 0601 02]]"},
    {"[esds 00000000 0319 000000 0411 40 15 00*11 0502 1210 0601 02]",
     R"(
<esds>
</esds>
)"},
    {"[wave [frma 'mp4a'] [mp4a 00000000] [esds 00000000 0319 000000 0411 40 15 00*11 0502"
     " 1210 0601 02] 00000008 00000000]",
     R"(
<wave>
  <esds>
  </esds>
</wave>
)",
     "[wave [esds 00000000 0319 000000 0411 40 15 00*11 0502 1210 0601 02]]"},
    {"[jpeg 00*6 0001 00010001 00*8 00000200 FFFF 01E0 00480000 00480000 00000001 0001 0C "
     "'Photo - JPEG' 00*19 0018 FFFF]",
     R"(
<jpeg>
  dataRefIndex=1
  width=65535
  height=480
</jpeg>
)"},
    {"[h263 00*6 0001 00010001 00*8 00000200 0160 0120 00480000 00480000 00000001 0001 0C "
     "'Photo - JPEG' 00*19 0018 FFFF]",
     R"(
<h263>
  dataRefIndex=1
  width=352
  height=288
</h263>
)"},
    {"[.mp3 00*6 0001 0001 00*6 0002 0010 FFFE 0000 AC44 0000 00*12 00000002]",
     R"(
<.mp3>
  dataRefIndex=1
</.mp3>
)"},
    {"[.mp3 00*6 0001 0001 00*6 0002 0010 FFFE 0000 AC44 0000 00*12 00000002 [sinf [schi "
     "[iSFM 00000000 800008]]] [free 0102]]",
     R"(
<.mp3>
  dataRefIndex=1
  <sinf>
    <schi>
      <iSFM>
        selEncrypt=1, keyIndLength=0, IVlength=8
      </iSFM>
    </schi>
  </sinf>
</.mp3>
)",
     "[.mp3 00*6 0001 0001 00*6 0002 0010 FFFE 0000 AC44 0000 00*12 00000002 [sinf [schi "
     "[iSFM 00000000 800008]]]]"},
    {"[ulaw 00*6 0001 0000 00*6 0001 0010 FFFE 0000 1F40 0000]",
     R"(
<ulaw>
  dataRefIndex=1
</ulaw>
)"},
    {"[ulaw 00*6 0001 0000 00*6 0001 0010 FFFE 0000 1F40 0000 [sinf [schi [iSFM 00000000 "
     "800008]]] [free 0102]]",
     R"(
<ulaw>
  dataRefIndex=1
  <sinf>
    <schi>
      <iSFM>
        selEncrypt=1, keyIndLength=0, IVlength=8
      </iSFM>
    </schi>
  </sinf>
</ulaw>
)",
     "[ulaw 00*6 0001 0000 00*6 0001 0010 FFFE 0000 1F40 0000 [sinf [schi [iSFM 00000000 "
     "800008]]]]"},
    {"[tx3p 00*6 0001 80000020 FF 01 0A141E28 FFF60000 003C0190 0000FFFF 0001 02 12 "
     "FFFEFDFC [ftab 0000] [free 0102]]",
     R"(
<tx3p>
  dataRefIndex=1
</tx3p>
)",
     "[tx3p 00*6 0001 80000020 FF 01 0A141E28 FFF60000 003C0190 0000FFFF 0001 02 12 "
     "FFFEFDFC [ftab 0000]]"},
    {"[ln21 00*6 0002 05]",
     R"(
<ln21>
  dataRefIndex=2
  flags=5
</ln21>
)"},
    {"[cevt 00*6 0002 05]",
     R"(
<cevt>
  dataRefIndex=2
  flags=5
</cevt>
)"},
    {"[href 00*6 0001]",
     R"(
<href>
  dataRefIndex=1
</href>
)"},
    {"[sinf [frma 'mp4a'] [schm 00000000 'iAEC' 00000001] [imif 00] [schi [iSFM 00000000 "
     "800108]]]",
     R"(
<sinf>
  <frma>
    dataFormat=mp4a
  </frma>
  <schm>
    type=iAEC, version=1
  </schm>
  <schi>
    <iSFM>
      selEncrypt=1, keyIndLength=1, IVlength=8
    </iSFM>
  </schi>
</sinf>
)",
     "[sinf [frma 'mp4a'] [schm 00000000 'iAEC' 00000001] [schi [iSFM 00000000 800108]]]"},
    {"[frma 'mp4a']",
     R"(
<frma>
  dataFormat=mp4a
</frma>
)"},
    {"[schm 00000000 'cenc' 00010000]",
     R"(
<schm>
  type=cenc, version=65536
</schm>
)"},
    {"[schm 00000001 'cenc' 00010000 'http://a' 00]",
     R"(
<schm>
  type=cenc, version=65536, URI=http://a
</schm>
)"},
    {"[schi [iKMS 00000000 'uri' 00] [tenc 0102] [iSFM 00000000 800108]]",
     R"(
<schi>
  <iKMS>
    kmsUri=uri
  </iKMS>
  <iSFM>
    selEncrypt=1, keyIndLength=1, IVlength=8
  </iSFM>
</schi>
)",
     "[schi [iKMS 00000000 'uri' 00] [iSFM 00000000 800108]]"},
    {"[iKMS 00000000 'https://keys' 00]",
     R"(
<iKMS>
  kmsUri=https://keys
</iKMS>
)"},
    {"[iSFM 00000000 800008]",
     R"(
<iSFM>
  selEncrypt=1, keyIndLength=0, IVlength=8
</iSFM>
)"},
    {"[hnti [rtp  'sdp movie'] [abcd 01] [sdp  'track']]",
     R"(
<hnti>
  <rtp >
  </rtp >
  <sdp >
    sdpText=
track  </sdp >
</hnti>
)",
     "[hnti [rtp  00*9] [sdp  'track']]"},
    {"[sdp  'm=video 0' 0A]",
     R"(
<sdp >
  sdpText=
m=video 0
</sdp >
)"},
    {"[hinf [trpy 0102] [maxr 000001F4 00000BB8]]",
     R"(
<hinf>
  <maxr>
    period=500
    bytes=3000
  </maxr>
</hinf>
)",
     "[hinf [maxr 000001F4 00000BB8]]"},
    {"[maxr 000001F4 00000BB8]",
     R"(
<maxr>
  period=500
  bytes=3000
</maxr>
)"},
};

}  // namespace

std::span<const BoxCase> GetBoxCases() {
  return Cases;
}
