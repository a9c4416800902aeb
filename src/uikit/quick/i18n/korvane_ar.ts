<?xml version="1.0" encoding="utf-8"?>
<!-- SPDX-License-Identifier: Apache-2.0 -->
<!DOCTYPE TS>
<TS version="2.1" language="ar" sourcelanguage="en">
<context>
    <name></name>
    <!-- Everywhere -->
    <message id="sdk.onemomentplease">
        <source></source>
        <translation>لحظة من فضلك</translation>
    </message>
    <message id="sdk.takinglonger">
        <source></source>
        <translation>يستغرق هذا وقتًا أطول من المعتاد</translation>
    </message>
    <message id="errors.generic.api">
        <source></source>
        <translation>حدث خطأ من جانبنا. يُرجى المحاولة مرة أخرى.</translation>
    </message>
    <message id="enrollment.enableFaceID.reason">
        <source></source>
        <translation>أكّد هويتك لتحتاج إلى عدد أقل من الرموز عبر الرسائل النصية.</translation>
    </message>
    <message id="sdk.biometrics.touch">
        <source></source>
        <translation>المس قارئ البصمة.</translation>
    </message>
    <message id="sdk.biometrics.away">
        <source></source>
        <translation>انتقل إلى هذه النافذة لاستخدام قارئ البصمة.</translation>
    </message>
    <message id="sdk.biometrics.cancel">
        <source></source>
        <translation>إلغاء</translation>
    </message>
    <message id="sdk.biometrics.nomatch">
        <source></source>
        <translation>البصمة غير مطابقة. يُرجى المحاولة مرة أخرى.</translation>
    </message>
    <message id="sdk.biometrics.retry">
        <source></source>
        <translation>تعذّرت القراءة. يُرجى المحاولة مرة أخرى.</translation>
    </message>
    <!-- SMS -->
    <message id="sdk.sms.explain.header">
        <source></source>
        <translation>لنتأكد من هويتك</translation>
    </message>
    <message id="sdk.sms.explain.subheader">
        <source></source>
        <translation>لحماية بطاقتك، سنرسل رمزًا من 6 أرقام إلى رقم الجوال المسجّل لدينا.</translation>
    </message>
    <message id="sdk.sms.explain.button">
        <source></source>
        <translation>إرسال الرمز</translation>
    </message>
    <message id="sdk.sms.code.header">
        <source></source>
        <translation>أدخل الرمز</translation>
    </message>
    <message id="sdk.sms.code.subheader">
        <source></source>
        <translation>أرسلنا رمزًا من 6 أرقام إلى جوالك. قد يستغرق وصوله دقيقة.</translation>
    </message>
    <message id="sdk.sms.code.input">
        <source></source>
        <translation>الرمز الوارد في الرسالة النصية</translation>
    </message>
    <message id="sdk.sms.code.expired">
        <source></source>
        <translation>انتهت صلاحية هذا الرمز. يُرجى طلب رمز جديد.</translation>
    </message>
    <message id="sdk.sms.code.incorrect">
        <source></source>
        <translation>هذا الرمز غير صحيح. تحقّق من آخر رسالة وحاول مرة أخرى.</translation>
    </message>
    <message id="sdk.sms.code.button">
        <source></source>
        <translation>متابعة</translation>
    </message>
    <message id="sdk.sms.code.resend">
        <source></source>
        <translation>إرسال رمز جديد</translation>
    </message>
    <message id="sdk.sms.code.resendIn">
        <source></source>
        <translation>إرسال رمز جديد بعد %1 ث</translation>
    </message>
    <message id="sdk.sms.code.resent">
        <source></source>
        <translation>رمز جديد في الطريق إليك</translation>
    </message>
    <!-- PIN -->
    <message id="sdk.setpin.header">
        <source></source>
        <translation>اختر رقمك السري</translation>
    </message>
    <message id="sdk.setpin.fourdigits">
        <source></source>
        <translation>استخدم أربعة أرقام</translation>
    </message>
    <message id="sdk.setpin.input">
        <source></source>
        <translation>الرقم السري الجديد</translation>
    </message>
    <message id="sdk.setpin.button">
        <source></source>
        <translation>متابعة</translation>
    </message>
    <message id="sdk.setpin.fourdigits.info">
        <source></source>
        <translation>يتكوّن رقمك السري من أربعة أرقام، وستستخدمه للدفع في المتاجر وسحب النقود. اختر رقمًا لا يعرفه سواك ولا تشاركه مع أحد. لن نطلبه منك أبدًا.</translation>
    </message>
    <message id="sdk.setpin.fourdigits.info.button">
        <source></source>
        <translation>حسنًا</translation>
    </message>
    <message id="sdk.youcandobetter.header">
        <source></source>
        <translation>اختر رقمًا سريًا أقوى</translation>
    </message>
    <message id="sdk.youcandobetter.subheader">
        <source></source>
        <translation>من السهل تخمين هذا الرقم السري.</translation>
    </message>
    <message id="sdk.youcandobetter.bullet.one">
        <source></source>
        <translation>تجنّب التسلسل، مثل 1234 أو 4321</translation>
    </message>
    <message id="sdk.youcandobetter.bullet.two">
        <source></source>
        <translation>تجنّب التكرار، مثل 1111 أو 5990</translation>
    </message>
    <message id="sdk.youcandobetter.bullet.three">
        <source></source>
        <translation>أربعة أرقام لا يختارها سواك</translation>
    </message>
    <message id="sdk.youcandobetter.button">
        <source></source>
        <translation>اختيار رقم سري آخر</translation>
    </message>
    <message id="sdk.confirmpin.header">
        <source></source>
        <translation>أدخل رقمك السري مرة أخرى</translation>
    </message>
    <message id="sdk.confirmpin.input">
        <source></source>
        <translation>الرقم السري الجديد مرة أخرى</translation>
    </message>
    <message id="sdk.confirmpin.button">
        <source></source>
        <translation>تعيين الرقم السري</translation>
    </message>
    <message id="sdk.error.matchpin.message">
        <source></source>
        <translation>الرقمان السريان غير متطابقين. أدخل رقمك السري الجديد مرة أخرى.</translation>
    </message>
    <message id="sdk.somethingdoesntmatch.header">
        <source></source>
        <translation>الرقمان السريان غير متطابقين</translation>
    </message>
    <message id="sdk.somethingdoesntmatch.subheader">
        <source></source>
        <translation>لم يتغيّر رقمك السري. أدخل الأرقام الأربعة نفسها في المرتين.</translation>
    </message>
    <message id="sdk.somethingdoesntmatch.button">
        <source></source>
        <translation>المحاولة مرة أخرى</translation>
    </message>
    <message id="sdk.success.setpin.header">
        <source></source>
        <translation>تم تعيين رقمك السري</translation>
    </message>
    <message id="sdk.success.setpin.subheader">
        <source></source>
        <translation>يمكنك استخدامه على الفور.</translation>
    </message>
    <message id="sdk.success.setpin.button">
        <source></source>
        <translation>تم</translation>
    </message>
    <!-- Activation -->
    <message id="sdk.success.cardActivatedAndSetPin.header">
        <source></source>
        <translation>بطاقتك جاهزة</translation>
    </message>
    <message id="sdk.success.cardActivatedAndSetPin.subheader">
        <source></source>
        <translation>البطاقة مفعّلة ورقمك السري معيّن. يمكنك استخدامهما على الفور.</translation>
    </message>
    <message id="sdk.success.cardActivatedAndSetPin.button">
        <source></source>
        <translation>تم</translation>
    </message>
    <message id="sdk.cardnotactivated.header">
        <source></source>
        <translation>فعّل بطاقتك أولًا</translation>
    </message>
    <message id="sdk.cardnotactivated.subheader">
        <source></source>
        <translation>يمكنك تعيين الرقم السري بعد تفعيل بطاقتك. يستغرق ذلك نحو دقيقة، وستحتاج إلى البطاقة.</translation>
    </message>
    <message id="sdk.cardnotactivated.button.one">
        <source></source>
        <translation>تفعيل البطاقة</translation>
    </message>
    <message id="sdk.cardnotactivated.button.two">
        <source></source>
        <translation>ليس الآن</translation>
    </message>
    <message id="sdk.cardactivated.header">
        <source></source>
        <translation>بطاقتك مفعّلة بالفعل</translation>
    </message>
    <message id="sdk.cardactivated.subheader">
        <source></source>
        <translation>لا يلزمك فعل أي شيء آخر. يمكنك تعيين رقم سري جديد إن أردت.</translation>
    </message>
    <message id="sdk.cardactivated.button.one">
        <source></source>
        <translation>إغلاق</translation>
    </message>
    <message id="sdk.cardactivated.button.two">
        <source></source>
        <translation>تعيين رقم سري جديد</translation>
    </message>
    <message id="sdk.cardarrived.header">
        <source></source>
        <translation>وصلت بطاقتك</translation>
    </message>
    <message id="sdk.cardarrived.subheader">
        <source></source>
        <translation>فعّلها واختر رقمًا سريًا لتبدأ استخدامها.</translation>
    </message>
    <message id="sdk.cardarrived.start">
        <source></source>
        <translation>تفعيل البطاقة</translation>
    </message>
    <message id="sdk.activatecard.lastfourdigits.header">
        <source></source>
        <translation>آخر أربعة أرقام من رقم بطاقتك</translation>
    </message>
    <message id="sdk.activatecard.lastfourdigits.input">
        <source></source>
        <translation>آخر أربعة أرقام من رقم البطاقة</translation>
    </message>
    <message id="sdk.activatecard.lastfourdigits.button">
        <source></source>
        <translation>متابعة</translation>
    </message>
    <message id="sdk.activatecard.cvv.header">
        <source></source>
        <translation>رمز الأمان</translation>
    </message>
    <message id="sdk.activatecard.cvv.subheader">
        <source></source>
        <translation>الأرقام الثلاثة على ظهر بطاقتك.</translation>
    </message>
    <message id="sdk.activatecard.cvv.input">
        <source></source>
        <translation>رمز الأمان</translation>
    </message>
    <message id="sdk.activatecard.cvv.button">
        <source></source>
        <translation>متابعة</translation>
    </message>
    <!-- Card viewer -->
    <message id="sdk.cardtype.physical">
        <source></source>
        <translation>بطاقة فعلية</translation>
    </message>
    <message id="sdk.cardtype.virtual">
        <source></source>
        <translation>بطاقة افتراضية</translation>
    </message>
    <message id="sdk.cardtype.wearable">
        <source></source>
        <translation>بطاقة الجهاز القابل للارتداء</translation>
    </message>
    <message id="sdk.cardtype.paywallet">
        <source></source>
        <translation>بطاقة المحفظة الرقمية</translation>
    </message>
    <message id="sdk.cardtype.none">
        <source></source>
        <translation>بطاقتك</translation>
    </message>
    <message id="sdk.cardviewer.activateAndSetPin.onCardButton">
        <source></source>
        <translation>تفعيل البطاقة</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.onCardFrozenMessage.header">
        <source></source>
        <translation>بطاقتك مجمّدة</translation>
    </message>
    <message id="sdk.cardviewer.activateAndSetPin.onCardFrozenMessage.subheader">
        <source></source>
        <translation>ألغِ تجميدها لتدفع بها أو تسحب النقود.</translation>
    </message>
    <message id="sdk.cardviewer.device.details">
        <source></source>
        <translation>بيانات البطاقة</translation>
    </message>
    <message id="sdk.cardviewer.device.details.cardholderName">
        <source></source>
        <translation>الاسم على البطاقة</translation>
    </message>
    <message id="sdk.cardviewer.device.details.cardNumber">
        <source></source>
        <translation>رقم البطاقة</translation>
    </message>
    <message id="sdk.cardviewer.device.details.expirationDate">
        <source></source>
        <translation>تاريخ الانتهاء</translation>
    </message>
    <message id="sdk.cardviewer.device.details.cvv">
        <source></source>
        <translation>رمز الأمان</translation>
    </message>
    <message id="sdk.cardviewer.device.details.reveal">
        <source></source>
        <translation>إظهار البيانات</translation>
    </message>
    <message id="sdk.cardviewer.device.details.hide">
        <source></source>
        <translation>إخفاء البيانات</translation>
    </message>
    <message id="sdk.cardviewer.device.details.missing">
        <source></source>
        <translation>غير متوفر</translation>
    </message>
    <message id="sdk.taptocopy">
        <source></source>
        <translation>المس للنسخ</translation>
    </message>
    <message id="sdk.copiedToClipboard">
        <source></source>
        <translation>تم النسخ</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeMyCard">
        <source></source>
        <translation>تجميد بطاقتي مؤقتًا</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeCardPopup.header">
        <source></source>
        <translation>هل تريد تجميد بطاقتك؟</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeCardPopup.body">
        <source></source>
        <translation>ستُرفض المدفوعات وعمليات سحب النقود إلى أن تلغي تجميدها.</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeCardPopup.freezeButton">
        <source></source>
        <translation>تجميد البطاقة</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.freezeCardPopup.cancelButton">
        <source></source>
        <translation>إلغاء</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.unFreezeCardPopup.header">
        <source></source>
        <translation>هل تريد إلغاء تجميد بطاقتك؟</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.unFreezeCardPopup.body">
        <source></source>
        <translation>ستتمكّن من الدفع وسحب النقود مجددًا.</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.unFreezeCardPopup.unFreezeButton">
        <source></source>
        <translation>إلغاء تجميد البطاقة</translation>
    </message>
    <message id="sdk.cardviewer.card.activateAndSetPin.unFreezeCardPopup.cancelButton">
        <source></source>
        <translation>رجوع</translation>
    </message>
    <message id="errors.base64todata.failed">
        <source></source>
        <translation>لا يمكننا عرض صورة بطاقتك حاليًا.</translation>
    </message>
    <message id="errors.datatoimage.failed">
        <source></source>
        <translation>لا يمكننا عرض صورة بطاقتك حاليًا.</translation>
    </message>
    <message id="errors.decodedimgstrempty.failed">
        <source></source>
        <translation>لا يمكننا عرض صورة بطاقتك حاليًا.</translation>
    </message>
    <message id="errors.decodedDisclosureStructIsNil">
        <source></source>
        <translation>لا يمكننا عرض شروط بطاقتك حاليًا.</translation>
    </message>
    <!-- Errors -->
    <message id="sdk.errorPage.tryagain.header">
        <source></source>
        <translation>تعذّر إكمال العملية</translation>
    </message>
    <message id="sdk.errorPage.tryagain.subheader.one">
        <source></source>
        <translation>حدث خطأ من جانبنا.</translation>
    </message>
    <message id="sdk.errorPage.tryagain.subheader.two">
        <source></source>
        <translation>يُرجى المحاولة مرة أخرى بعد قليل.</translation>
    </message>
    <message id="sdk.errorPage.tryagain.button">
        <source></source>
        <translation>إغلاق</translation>
    </message>
    <message id="sdk.registration.errorPage.header">
        <source></source>
        <translation>لم ينجح ذلك</translation>
    </message>
    <message id="sdk.registration.errorPage.body">
        <source></source>
        <translation>تعذّر إكمال هذه الخطوة. يُرجى الرجوع والمحاولة مرة أخرى.</translation>
    </message>
    <message id="sdk.registration.errorPage.button">
        <source></source>
        <translation>رجوع</translation>
    </message>
    <message id="sdk.errorPage.contactSupport.header">
        <source></source>
        <translation>يُرجى التواصل معنا</translation>
    </message>
    <message id="sdk.errorPage.contactSupport.subheader.one">
        <source></source>
        <translation>لا يمكننا تنفيذ ذلك لك في التطبيق.</translation>
    </message>
    <message id="sdk.errorPage.contactSupport.subheader.two">
        <source></source>
        <translation>فريق الدعم لدينا جاهز لمساعدتك.</translation>
    </message>
    <message id="sdk.errorPage.contactSupport.button.one">
        <source></source>
        <translation>إغلاق</translation>
    </message>
    <!-- Accessibility -->
    <message id="sdk.accessibility.back">
        <source></source>
        <translation>رجوع</translation>
    </message>
    <message id="sdk.accessibility.close">
        <source></source>
        <translation>إغلاق</translation>
    </message>
    <message id="sdk.accessibility.busy">
        <source></source>
        <translation>يُرجى الانتظار</translation>
    </message>
    <message id="sdk.accessibility.hidden">
        <source></source>
        <translation>مخفي</translation>
    </message>
    <message id="sdk.accessibility.shown">
        <source></source>
        <translation>ظاهر</translation>
    </message>
    <message id="sdk.accessibility.passcode">
        <source></source>
        <translation>%1، الأرقام المدخلة: %2 من %3</translation>
    </message>
</context>
</TS>
